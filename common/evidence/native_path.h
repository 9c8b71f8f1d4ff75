#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <utility>

// Paths of the evidence as the system takes them. A name there may be bytes that are no text, and a
// path may be longer than the system takes at once: such a file has a shown path, a text, and a
// native one beside it.

/// The name as rows and logs show it: bytes that are no UTF-8 as \xNN.
QString shown_name(const QByteArray &name);

/// What system calls take for a shown path.
QByteArray native_path(const QString &shown);

/// The path with dots and links resolved, in one step of the system where it offers that: asking
/// for each part by itself takes the square of a path's depth. Empty when it leads nowhere.
QString canonical_path(const QString &shown);

/// The path with its links resolved: empty when it leads nowhere, itself for a native_place.
QString resolved_path(const QString &shown);

/// While it lives, native_path() of this thread leads the shown path of a file to the file of that
/// name in a folder, that of its AppleDouble companion ("._" before the name) likewise, and what is
/// shown as lying in its folder to that folder. The latest one
/// counts.
class native_place
{
public:
    native_place(const QString &shown_folder, const QByteArray &native_folder,
                 const QByteArray &name);
    ~native_place();
    native_place(const native_place &) = delete;
    native_place &operator=(const native_place &) = delete;

    const QString shown_folder; ///< ends in no "/"
    const QByteArray native_folder;
    const QByteArray name;
    const QString shown;
    const QString shown_companion;

private:
    const native_place *const before_;
};

/// What the system knows of a file or folder, links followed. Times that it does not know are
/// invalid.
struct file_status {
    bool exists = false;
    bool is_folder = false;
    qint64 size = 0; ///< bytes
    QDateTime birth;
    QDateTime modified;
    std::pair<quint64, quint64> identity; ///< device and inode; zeros where the system has none
};

file_status status_of(const QString &shown);

/// The system's words for an error number.
QString error_text_of(int error);
