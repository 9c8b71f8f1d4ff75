#pragma once

#include <QList>
#include <QString>

/// The operations of an operating system that file metadata is read with. The logic above them is
/// the same everywhere; see macos/file_metadata.cpp. References are opaque and owned by the caller,
/// who gives each non-null one back with release() once.
class metadata_platform
{
public:
    using reference = const void *;

    virtual ~metadata_platform() = default;

    /// The metadata item of a file; null when the file has none.
    virtual reference create_item(const QString &path) = 0;
    /// The value of an item's attribute; null when it has none of that name.
    virtual reference copy_attribute(reference item, const QString &name) = 0;
    /// The printed description of a value: "<CFNumber ...>{value = +2, ...}", "<CFBoolean ...",
    /// "<CFString ...>{contents = "..."}", a date "2021-03-05 14:07:09 +0000" or a list in
    /// brackets.
    virtual QString description(reference value) = 0;
    virtual void release(reference value) = 0;

    /// The position that a picture's own properties hold, as they print: numbers without sign, "N"
    /// or "S", "E" or "W". Empty texts for what it does not hold.
    struct position {
        QString latitude;
        QString latitude_reference;
        QString longitude;
        QString longitude_reference;
    };
    virtual position picture_position(const QString &path) = 0;

    /// A date value as text in the given pattern, in UTC. The formatter may be null.
    virtual QString formatted_date(reference date, reference formatter, const QString &pattern) = 0;

    // For the readers of dictionaries; what they return stays the dictionary's.

    /// The value of a key; null when the dictionary has none.
    virtual reference dictionary_value(reference dictionary, reference key) = 0;
    /// The bare text of a string or number; "1" or "0" of a boolean.
    virtual QString text(reference value) = 0;
    /// The name of the value's class; booleans are of class __NSCFBoolean.
    virtual QString class_name(reference value) = 0;
    virtual QList<reference> array_items(reference array) = 0;

    /// The operations in use: the system's own unless a test has put others in their place.
    static metadata_platform &current();
    /// Null restores the system's own. The platform must outlive its use.
    static void set_current(metadata_platform *platform);
};

/// A reference that is released at the end of its scope.
class metadata_reference
{
public:
    explicit metadata_reference(metadata_platform::reference value) : value_(value) {}
    ~metadata_reference()
    {
        if (value_ != nullptr)
            metadata_platform::current().release(value_);
    }
    metadata_reference(const metadata_reference &) = delete;
    metadata_reference &operator=(const metadata_reference &) = delete;

    explicit operator bool() const { return value_ != nullptr; }
    metadata_platform::reference get() const { return value_; }

private:
    metadata_platform::reference value_;
};

/// The system's own operations, one implementation per system.
metadata_platform &system_metadata_platform();
