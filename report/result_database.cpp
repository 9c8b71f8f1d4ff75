#include "report/result_database.h"

#include "report/terminal.h"
#include "report/texts.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QUrl>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

/// A result in the temporary folder, with its unfinished transaction.
struct private_copy {
    explicit private_copy(QString original) : of(std::move(original)) {}
    QString path() const { return folder.filePath(u"Opera.sqlite"_s); }

    QString of;
    QTemporaryDir folder;
};

namespace
{

constexpr int steps_between_questions = 10'000;
/// A row takes about 10 bytes at least, and reading or sorting it at most some hundred steps.
constexpr qint64 steps_per_byte = 40;
constexpr qint64 steps_in_any_case = 100'000'000;
constexpr qint64 least_row_bytes = 4;
constexpr size_t most_tables = 500;

std::string quoted_name(std::string_view name)
{
    std::string text = "\"";
    for (const char letter : name)
        text += letter == '"' ? std::string("\"\"") : std::string(1, letter);
    return text + '"';
}

class statement
{
public:
    statement(sqlite3 *database, const std::string &sql)
    {
        sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size()), &handle_, nullptr);
    }
    ~statement() { sqlite3_finalize(handle_); }
    statement(const statement &) = delete;
    statement &operator=(const statement &) = delete;

    void bind(const std::string &text)
    {
        sqlite3_bind_text(handle_, 1, text.c_str(), -1, SQLITE_TRANSIENT);
    }
    sqlite3_stmt *release() { return std::exchange(handle_, nullptr); }
    bool next() { return handle_ != nullptr && sqlite3_step(handle_) == SQLITE_ROW; }
    std::string text(int column) const
    {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(handle_, column));
        return text == nullptr ? std::string() : std::string(text);
    }
    int number(int column) const { return sqlite3_column_int(handle_, column); }

private:
    sqlite3_stmt *handle_ = nullptr;
};

} // namespace

int stored_table::column(std::string_view wanted) const
{
    for (size_t i = 0; i < columns.size(); ++i)
        if (columns[i] == wanted)
            return static_cast<int>(i);
    return -1;
}

result_database::result_database(const result_folder &folder) : folder_(folder)
{
    QStringList companions;
    for (const QString &ending : {u"-wal"_s, u"-journal"_s}) {
        if (QFileInfo(folder.database + ending).size() > 0)
            companions.append(ending);
    }
    size_ = QFileInfo(folder.database).size();
    if (!QFileInfo(folder.database).isFile())
        terminal::print_error(folder.database + u" is no file");
    else if (companions.isEmpty() ? open(folder.database, false) : open_copy(companions))
        read_tables();
}

result_database::~result_database()
{
    sqlite3_close(database_);
}

bool result_database::open_copy(const QStringList &companions)
{
    // A report opens a result several times: its copy serves until another result needs one.
    static std::shared_ptr<private_copy> last;
    if (!last || last->of != folder_.database) {
        last.reset();
        auto made = std::make_shared<private_copy>(folder_.database);
        bool copied = made->folder.isValid();
        for (const QString &ending : QStringList(QString()) + companions) {
            const QString copy = made->path() + ending;
            copied = copied && QFile::copy(folder_.database + ending, copy) &&
                     QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
        }
        if (!copied) {
            terminal::print_error(folder_.database +
                                  u": an unfinished transaction lies beside it, and it could not "
                                  "be copied to the temporary folder");
            return false;
        }
        last = std::move(made);
    }
    copy_ = last;
    terminal::print_note(folder_.database +
                         u": an unfinished transaction lies beside it (a run that goes on or was "
                         "cut off); a copy is read");
    return open(copy_->path(), true);
}

bool result_database::open(const QString &path, bool is_copy)
{
    QByteArray name = QUrl::fromLocalFile(path).toEncoded(QUrl::FullyEncoded);
    name += is_copy ? "?mode=rw" : "?mode=ro&immutable=1";
    const int flags = SQLITE_OPEN_URI | (is_copy ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
    if (sqlite3_open_v2(name.constData(), &database_, flags, nullptr) == SQLITE_OK) {
        restrict_file();
        if (can_be_asked())
            return true;
        const QString reason = QString::fromUtf8(sqlite3_errmsg(database_));
        // SQLite goes on over a cut file and over parts of a schema that it cannot read when the
        // schema may be repaired; nothing can be written here.
        sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_WRITABLE_SCHEMA, 1, nullptr);
        if (can_be_asked()) {
            terminal::print_error(folder_.database + u" is damaged (" + reason +
                                  u"); what can be read of it is");
            return true;
        }
    }
    terminal::print_error(folder_.database + u" cannot be read: " +
                          QString::fromUtf8(sqlite3_errmsg(database_)));
    sqlite3_close(database_);
    database_ = nullptr;
    return false;
}

bool result_database::can_be_asked()
{
    return sqlite3_exec(database_, "SELECT count(*) FROM sqlite_schema", nullptr, nullptr,
                        nullptr) == SQLITE_OK;
}

void result_database::restrict_file()
{
    for (const int option :
         {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
          SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_DQS_DML, SQLITE_DBCONFIG_DQS_DDL})
        sqlite3_db_config(database_, option, 0, nullptr);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_limit(database_, SQLITE_LIMIT_ATTACHED, 0);
    // No value is longer than its file.
    sqlite3_limit(database_, SQLITE_LIMIT_LENGTH,
                  static_cast<int>(qBound(qint64{1} << 20, size_, qint64{1'000'000'000})));
    steps_left_ = steps_in_any_case;
    sqlite3_progress_handler(database_, steps_between_questions, spend, this);
    // Its sorter must not fill the memory.
    sqlite3_exec(database_, "PRAGMA temp_store = FILE; PRAGMA cache_size = -8192", nullptr, nullptr,
                 nullptr);
}

int result_database::spend(void *self)
{
    qint64 &left = static_cast<result_database *>(self)->steps_left_;
    left -= steps_between_questions;
    return left < 0 || terminal::interrupted() ? 1 : 0;
}

/// Rows that a damaged page hides are missed by nobody: SQLite looks for them when it is asked to.
void result_database::check_once()
{
    static QSet<QString> checked;
    if (checked.contains(folder_.database))
        return;
    checked.insert(folder_.database);
    terminal::show_progress(u"checking results"_s, checked.size());
    steps_left_ = steps_in_any_case + size_ * steps_per_byte;
    statement check(database_, "PRAGMA quick_check(1)");
    const std::string found = check.next() ? check.text(0) : std::string(sqlite3_errmsg(database_));
    if (found != "ok" && !terminal::interrupted())
        terminal::print_error(folder_.database + u" is damaged (" +
                              texts::to_qstring(found).simplified() +
                              u"); what can be read of it is");
    steps_left_ = steps_in_any_case;
}

void result_database::read_tables()
{
    check_once();
    statement list(database_, "SELECT name, type FROM pragma_table_list WHERE schema = 'main' AND "
                              "name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name");
    while (list.next() && tables_.size() < most_tables) {
        stored_table table{texts::to_qstring(list.text(0)).toStdString(), {}};
        if (list.text(1) == "table") {
            read_columns(table);
            tables_.push_back(std::move(table));
        } else {
            terminal::print_error(folder_.database + u": \"" + texts::to_qstring(table.name) +
                                  u"\" is no plain table and was left out");
        }
    }
}

void result_database::read_columns(stored_table &table)
{
    statement list(database_, "SELECT name, hidden FROM pragma_table_xinfo(?) ORDER BY cid");
    list.bind(table.name);
    while (list.next()) {
        if (list.number(1) == 0)
            table.columns.push_back(list.text(0));
        else
            terminal::print_error(folder_.database + u": a computed column of \"" +
                                  texts::to_qstring(table.name) + u"\" was left out");
    }
}

const stored_table *result_database::table(std::string_view name) const
{
    for (const stored_table &table : tables_)
        if (table.name == name)
            return &table;
    return nullptr;
}

std::optional<row_cursor> result_database::select(const stored_table &table,
                                                  const std::vector<int> &columns,
                                                  const std::string &end, bool by_id)
{
    const QString what = folder_.database + u": table " + texts::to_qstring(table.name);
    std::string sql = "SELECT rowid";
    for (const int column : columns) {
        if (column >= 0)
            sql += ", " + quoted_name(table.columns[static_cast<size_t>(column)]);
    }
    sql += " FROM " + quoted_name(table.name) + end;
    steps_left_ = steps_in_any_case + size_ * steps_per_byte;
    statement prepared(database_, sql);
    sqlite3_stmt *handle = prepared.release();
    if (handle == nullptr) {
        terminal::print_error(what + u" cannot be read: " +
                              QString::fromUtf8(sqlite3_errmsg(database_)));
        return std::nullopt;
    }
    return row_cursor(handle, columns, what, by_id, size_ / least_row_bytes + 1);
}

std::optional<row_cursor> result_database::rows(const stored_table &table,
                                                const std::vector<int> &columns)
{
    // NOT INDEXED: an index of the file need not hold what its table holds.
    return select(table, columns, " NOT INDEXED", true);
}

std::optional<row_cursor> result_database::latest_rows(const stored_table &table,
                                                       const std::vector<int> &columns,
                                                       const std::vector<int> &time_columns,
                                                       qint64 most)
{
    std::string time = "COALESCE(";
    for (const int column : time_columns)
        time += "NULLIF(CAST(" + quoted_name(table.columns[static_cast<size_t>(column)]) +
                " AS INTEGER), 0), ";
    return select(table, columns,
                  " NOT INDEXED ORDER BY " + time + "0) DESC, rowid LIMIT " + std::to_string(most),
                  false);
}
