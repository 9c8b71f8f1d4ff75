#include "common/extraction/rollback_journal.h"

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/evidence/evidence_problems.h"
#include "common/extraction/extraction_run.h"
#include "common/extraction/failure_log.h"
#include "common/extraction/guarded_connection.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <bit>

using namespace Qt::StringLiterals;

namespace
{

constexpr char magic_bytes[] = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
constexpr qsizetype magic_size = 8;

/// Moves the companions of a write-ahead log away: closing a connection that may write would work
/// them into the database, with all that a made-up one claims.
class hidden_companions
{
public:
    explicit hidden_companions(const QString &copy) : copy_(copy) { move({}, u".kept"_s); }
    ~hidden_companions() { move(u".kept"_s, {}); }
    hidden_companions(const hidden_companions &) = delete;
    hidden_companions &operator=(const hidden_companions &) = delete;

private:
    void move(const QString &from, const QString &to) const
    {
        for (const char *suffix : {"-wal", "-shm"}) {
            const QString companion = copy_ + QString::fromUtf8(suffix);
            if (QFileInfo::exists(companion + from)) {
                QFile::remove(companion + to);
                QFile::rename(companion + from, companion + to);
            }
        }
    }

    const QString copy_;
};

enum class journal_state { nothing_to_do, unfinished, refused };

/// What SQLite would make of a journal beside the database. Read from our copy of it, which nobody
/// changes meanwhile.
journal_state state_of(const QString &journal, qint64 database_size, QString &reason)
{
    QFile file(journal);
    if (!file.open(QIODevice::ReadOnly))
        return journal_state::nothing_to_do;
    enum { original_pages = 16, page_size = 24, header_size = 28 };
    const QByteArray header = file.read(header_size);
    const QByteArrayView magic(magic_bytes, magic_size);
    if (header.size() < header_size || !header.startsWith(magic))
        return journal_state::nothing_to_do;
    // There ends the name of a file that lists further journals. SQLite opens what that list names,
    // and deletes both: on this machine, those of the examiner.
    if (file.seek(file.size() - magic_size) && file.read(magic_size) == magic) {
        reason = u"the journal names another file and is not used"_s;
        return journal_state::refused;
    }
    const quint64 pages = qFromBigEndian<quint32>(header.constData() + original_pages);
    const auto bytes = qFromBigEndian<quint32>(header.constData() + page_size);
    // SQLite gives the database the size that it had. Pages that it lost lie in the journal, but
    // for free ones.
    constexpr quint64 most_growth = 4;
    if (!std::has_single_bit(bytes) || bytes < 512 || bytes > 65'536 ||
        pages * bytes > most_growth * static_cast<quint64>(database_size + file.size())) {
        reason = u"the journal claims more pages than there are and is not used"_s;
        return journal_state::refused;
    }
    return journal_state::unfinished;
}

} // namespace

void roll_back_copy(const QString &source, const QString &copy, const QString &signature,
                    extraction_run &run)
{
    const QString from = source.trimmed() + u"-journal";
    const QString journal = copy + u"-journal";
    QFile::remove(journal);
    const QFileInfo there(from);
    if (QFileInfo(copy).size() == 0 ||
        (!there.isSymLink() && (!exists_in_evidence(from) || there.size() == 0)))
        return;
    if (!copy_evidence_file(from, journal, evidence_file::links::refused)) {
        report_evidence_problem(from, u"the journal is not copied; changes that were not finished "
                                      "stand among the rows"_s);
        return;
    }
    QString reason;
    const journal_state state = state_of(journal, QFileInfo(copy).size(), reason);
    if (state == journal_state::unfinished) {
        const hidden_companions hidden(copy);
        guarded_connection connection(signature + u"_journal", copy, run, signature,
                                      named_connection::access::read_write);
        // The first statement that reads the database plays the journal back.
        guarded_query first(connection, u"PRAGMA schema_version"_s);
        if (!first.execute() || !first.next())
            reason = first.error_text() + u"; the journal is not played back";
        else
            debug_log(operation_tag(signature) +
                          u" unfinished changes are taken out of the copy by the journal " + from,
                      signature);
    }
    if (!reason.isEmpty())
        report_evidence_problem(from, reason);
    QFile::remove(journal);
}
