#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <thread>

/// What identifies a file of the evidence.
struct evidence_print {
    QString path; ///< where it lies on the examiner's machine
    qint64 size = -1;
    QDateTime modified = {};
    QByteArray sha256 = {}; ///< hexadecimal; empty when it was not taken
    QString problem = {};   ///< why it was not, unless nobody wanted it
};

/// The files with the companions that SQLite keeps beside a database, each once, in order: regular
/// ones that links do not lead out of the source. Folders are left out.
QStringList files_to_print(const QStringList &found, const QString &source);

/// Takes the prints of files on a thread of its own, without moving access times where the system
/// allows that.
class evidence_prints
{
public:
    /// With hashes or without. Once `stopped`, which the thread calls, is true, the files that are
    /// left get no hash.
    void start(const QStringList &files, bool hashes, const std::function<bool()> &stopped);
    /// Waits for the thread. In the order of the files.
    const QList<evidence_print> &finish();
    ~evidence_prints() { finish(); }

private:
    QList<evidence_print> prints_;
    std::thread thread_;
};
