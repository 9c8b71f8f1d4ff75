#pragma once

#include <QByteArray>
#include <QFileDevice>
#include <QString>

#include <stdexcept>

namespace sample
{

/// Ends the generation; the text is one line for the person who started it.
class evidence_error : public std::runtime_error
{
public:
    explicit evidence_error(const QString &text) : std::runtime_error(text.toStdString()) {}
};

/// Throws the evidence_error for a file that does not take what is written to it.
[[noreturn]] void fail_to_write(const QFileDevice &file);

/// Creates the folder with its parents. Throws evidence_error.
void make_folder(const QString &path);

/// Creates the folder of a file with its parents. Throws evidence_error.
void make_folder_of(const QString &file);

/// Writes a file with its folders and dates it (Unix seconds). Throws evidence_error.
void write_file(const QString &path, const QByteArray &bytes, qint64 modified);

/// Sets the modification time of a file (Unix seconds). Throws evidence_error.
void date_file(const QString &path, qint64 modified);

} // namespace sample
