#include "common/metadata/file_xattrs.h"

#include "common/evidence/evidence_file.h"
#include "common/evidence/native_path.h"

#include <array>

#ifdef Q_OS_LINUX
#include <sys/xattr.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

/// What the names begin with: nothing from drivers in user space, "osx." from the kernel's HFS+ and
/// APFS drivers, "user." in copies on the file systems of Linux.
constexpr std::array name_prefixes = {"", "osx.", "user."};

#ifdef Q_OS_LINUX

// By path and not by an open file: nothing needs to be opened then, and folders have attributes
// too. The calls do not follow a link in the last component.

QByteArrayList listed_names(const QByteArray &path)
{
    const ssize_t size = ::llistxattr(path.constData(), nullptr, 0);
    if (size <= 0 || size > longest_attribute)
        return {};
    QByteArray names(size, '\0');
    const ssize_t got = ::llistxattr(path.constData(), names.data(), static_cast<size_t>(size));
    return got > 0 ? names.first(got).split('\0') : QByteArrayList();
}

/// Null when the file has no such attribute or it is too long.
QByteArray listed_value(const QByteArray &path, const QByteArray &name)
{
    const ssize_t size = ::lgetxattr(path.constData(), name.constData(), nullptr, 0);
    if (size <= 0 || size > longest_attribute)
        return {};
    QByteArray value(size, '\0');
    const ssize_t got =
        ::lgetxattr(path.constData(), name.constData(), value.data(), static_cast<size_t>(size));
    return got > 0 ? value.first(got) : QByteArray();
}

#else

QByteArrayList listed_names(const QByteArray &)
{
    return {};
}

QByteArray listed_value(const QByteArray &, const QByteArray &)
{
    return {};
}

#endif

attribute_values companion_of(const QString &path)
{
    // The attributes lie in front of the resource fork, which may be long.
    constexpr qint64 enough_bytes = 4 * 1024 * 1024;
    evidence_file companion(path.section(u'/', 0, -2) + u"/._" + path.section(u'/', -1));
    if (!companion.open_for_reading(evidence_file::links::refused))
        return {};
    return apple_double_attributes(companion.read(enough_bytes));
}

} // namespace

file_xattrs::file_xattrs(const QString &path)
{
    const QString resolved = resolved_path(path);
    path_ = native_path(resolved);
    listed_names_ = listed_names(path_);
    companion_ = companion_of(resolved);
}

QByteArrayList file_xattrs::values(const QByteArray &name) const
{
    QByteArrayList values;
    for (const char *prefix : name_prefixes) {
        if (const QByteArray listed = prefix + name; listed_names_.contains(listed))
            values.append(listed_value(path_, listed));
    }
    values.append(companion_.value(name));
    values.removeAll(QByteArray());
    return values;
}
