#pragma once

#include "common/metadata/apple_double.h"

#include <QByteArrayList>
#include <QString>

/// The extended attributes that a file of a macOS volume had, by the names they had there, from
/// every place in which other systems keep them.
class file_xattrs
{
public:
    /// The path must exist. When it is a link, that which the link leads to is looked at.
    explicit file_xattrs(const QString &path);

    /// The values under a name, from the most direct carrier to the least.
    QByteArrayList values(const QByteArray &name) const;

private:
    QByteArray path_; ///< as the system's calls want it, without links
    QByteArrayList listed_names_;
    attribute_values companion_;
};
