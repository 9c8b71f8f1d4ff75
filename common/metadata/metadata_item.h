#pragma once

#include "common/metadata/metadata_platform.h"
#include "common/metadata/metadata_records.h"

/// What the system keeps about one file beside its content; false for a file without metadata.
class metadata_item : public metadata_reference
{
public:
    explicit metadata_item(const QString &path)
        : metadata_reference(metadata_platform::current().create_item(path))
    {
    }

    /// The printed description of an attribute; null when the file does not have it.
    QString printed(const QString &name) const;

    /// When the file was last and ever used.
    struct_GLOBAL_ARTIFACT_used_dates used_dates() const;
};
