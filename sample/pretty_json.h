#pragma once

#include <QFile>
#include <QString>

#include <vector>

namespace sample
{

/// Writes a JSON file the way the browser prints its "Bookmarks": three blanks for each object, one
/// key in a line, the elements of an array behind one another. The caller names the keys of an
/// object in alphabetical order, as the browser does. Throws evidence_error when a write fails.
class pretty_json
{
public:
    /// Makes the file with its folders.
    explicit pretty_json(const QString &path);

    /// The key is null for the outermost object and for elements of an array.
    void open_object(const char *key = nullptr);
    void close_object();
    void open_array(const char *key);
    void close_array();
    void add_text(const char *key, const QString &text);
    void add_number(const char *key, qint64 number);

    /// Ends the file and dates it.
    void finish(qint64 modified);

private:
    struct level {
        bool is_array;
        bool is_empty = true;
    };

    void begin_value(const char *key);
    void begin_line();
    void write(const QByteArray &bytes);

    QFile file_;
    std::vector<level> levels_;
    int depth_ = 0; ///< open objects
};

} // namespace sample
