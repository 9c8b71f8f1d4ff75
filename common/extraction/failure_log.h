#pragma once

#include <QString>

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

/// "int opera_macos::extract_history_11()" to "[extract_history_11]", for lines of the frame's own.
QString operation_tag(const QString &signature);
