#pragma once

#include <QString>

#include <map>
#include <vector>

/// One log line of a failure: a fixed text, and what is joined to it.
struct failure_line {
    enum class detail { none, path, system_user, error, query };

    const char *text;
    detail followed_by = detail::none;

    // Implicit, so that a descriptor can list plain texts.
    constexpr failure_line(const char *line) : text(line) {}
    constexpr failure_line(const char *line, detail joined) : text(line), followed_by(joined) {}
};

using failure_lines = std::vector<failure_line>;

constexpr failure_line with_path(const char *text)
{
    return {text, failure_line::detail::path};
}

constexpr failure_line with_system_user(const char *text)
{
    return {text, failure_line::detail::system_user};
}

/// The error text of the database driver or the file, on a line of its own.
inline constexpr failure_line error_text{"", failure_line::detail::error};
/// The statement that failed, on a line of its own.
inline constexpr failure_line executed_query{"", failure_line::detail::query};

/// The usual lines for something that does not open: a text, then what the driver says.
inline failure_lines open_failure(const failure_line &text)
{
    return {text, error_text};
}

/// The usual lines for a statement that fails: a text, what the driver says, the statement.
inline failure_lines query_failure(const failure_line &text)
{
    return {text, error_text, executed_query};
}

/// What the lines of a failure may refer to.
struct failure_details {
    QString path = {};
    QString system_user = {};
    QString error = {};
    QString query = {};
};

/// Writes the lines, in order, under the given signature text.
void log_failure(const failure_lines &lines, const QString &signature,
                 const failure_details &details);

/// The failures met while one file is read. Of each kind, told by its first text, ten are logged
/// and the rest counted: evidence could fill the examiner's disk with them.
class failure_log
{
public:
    failure_log(const QString &signature, const QString &path, const QString &system_user)
        : signature_(signature), path_(path), system_user_(system_user)
    {
    }
    /// Logs the counts.
    ~failure_log();
    failure_log(const failure_log &) = delete;
    failure_log &operator=(const failure_log &) = delete;

    void log(const failure_lines &lines, const QString &error, const QString &query)
    {
        log(lines, error, query, signature_);
    }
    /// Under the signature text of another operation.
    void log(const failure_lines &lines, const QString &error, const QString &query,
             const QString &signature);
    const QString &signature() const { return signature_; }

private:
    QString signature_;
    QString path_;
    QString system_user_;
    std::map<const char *, int> met_; ///< by the kind's first text
};

/// "int opera_macos::extract_history_11()" to "[extract_history_11]", for lines of the frame's own.
QString operation_tag(const QString &signature);
