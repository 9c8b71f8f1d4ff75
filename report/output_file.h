#pragma once

#include <QSaveFile>

#include <string>
#include <string_view>

/// Writes all of the bytes. A short write is no error yet for QFile: only the next one tells why.
bool write_all(QFileDevice &file, const char *bytes, size_t size);

/// A file that stands under its name only when it is complete.
class output_file
{
public:
    /// A failure to make it is told, here or by commit().
    explicit output_file(const QString &path);

    /// Appends to the file. False once anything could not be written.
    bool write(std::string_view bytes);
    /// Puts the file in its place; tells what went wrong, and false, when anything could not be
    /// written. Without a commit nothing stays.
    bool commit();

private:
    bool flush();

    QSaveFile file_;
    std::string buffer_;
    bool good_;
};
