// File metadata from the system's own metadata and image interfaces. Built on macOS only; elsewhere
// its syntax is checked against minimal declarations, so that it cannot rot.

#include "common/metadata/metadata_platform.h"

#import <CoreFoundation/CoreFoundation.h>
#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>
#import <ImageIO/ImageIO.h>

namespace
{

/// A CoreFoundation reference that is released at the end of its scope.
template <typename type> class owned
{
public:
    explicit owned(type value) : value_(value) {}
    ~owned()
    {
        if (value_ != nullptr)
            CFRelease(value_);
    }
    owned(const owned &) = delete;
    owned &operator=(const owned &) = delete;
    explicit operator bool() const { return value_ != nullptr; }
    type get() const { return value_; }

private:
    type value_;
};

owned<CFStringRef> system_string(const QString &text)
{
    return owned<CFStringRef>(CFStringCreateWithCString(
        kCFAllocatorDefault, text.toUtf8().constData(), kCFStringEncodingUTF8));
}

QString text_of_string(CFStringRef string)
{
    if (string == nullptr)
        return {};
    if (const char *direct = CFStringGetCStringPtr(string, CFStringGetSystemEncoding()))
        return QString::fromLocal8Bit(direct);
    const CFIndex longest = CFStringGetMaximumSizeForEncoding(CFStringGetLength(string),
                                                              kCFStringEncodingUTF8) + 1;
    QByteArray bytes(static_cast<qsizetype>(longest), '\0');
    if (!CFStringGetCString(string, bytes.data(), longest, kCFStringEncodingUTF8))
        return {};
    return QString::fromUtf8(bytes.constData());
}

QString description_of(CFTypeRef value)
{
    if (value == nullptr)
        return {};
    const owned<CFStringRef> text(CFCopyDescription(value));
    return text_of_string(text.get());
}

QString property_text(CFDictionaryRef properties, CFStringRef key)
{
    const CFTypeRef value = CFDictionaryGetValue(properties, key);
    if (value == nullptr)
        return {};
    const id object = (__bridge id)value;
    return text_of_string((__bridge CFStringRef)[object description]);
}

class apple_metadata : public metadata_platform
{
public:
    reference create_item(const QString &path) override
    {
        const owned<CFStringRef> name = system_string(path);
        return name ? MDItemCreate(kCFAllocatorDefault, name.get()) : nullptr;
    }

    reference copy_attribute(reference item, const QString &name) override
    {
        const owned<CFStringRef> attribute = system_string(name);
        if (!attribute)
            return nullptr;
        return MDItemCopyAttribute((MDItemRef)const_cast<void *>(item), attribute.get());
    }

    QString description(reference value) override { return description_of(value); }

    void release(reference value) override { CFRelease(value); }

    position picture_position(const QString &path) override
    {
        const QByteArray name = path.toUtf8();
        const owned<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
            kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(name.constData()), name.size(),
            false));
        if (!url)
            return {};
        const owned<CGImageSourceRef> source(CGImageSourceCreateWithURL(url.get(), nullptr));
        if (!source)
            return {};
        const owned<CFDictionaryRef> properties(
            CGImageSourceCopyPropertiesAtIndex(source.get(), 0, nullptr));
        if (!properties)
            return {};
        const auto gps = static_cast<CFDictionaryRef>(
            CFDictionaryGetValue(properties.get(), kCGImagePropertyGPSDictionary));
        if (gps == nullptr)
            return {};
        return {property_text(gps, kCGImagePropertyGPSLatitude),
                property_text(gps, kCGImagePropertyGPSLatitudeRef),
                property_text(gps, kCGImagePropertyGPSLongitude),
                property_text(gps, kCGImagePropertyGPSLongitudeRef)};
    }

    QString formatted_date(reference date, reference formatter, const QString &pattern) override
    {
        NSDateFormatter *format = formatter != nullptr ? (__bridge NSDateFormatter *)formatter
                                                       : [[NSDateFormatter alloc] init];
        const owned<CFStringRef> form = system_string(pattern);
        [format setDateFormat:(__bridge NSString *)form.get()];
        [format setLocale:[NSLocale localeWithLocaleIdentifier:@"en_US_POSIX"]];
        [format setTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:0]];
        NSString *text = [format stringFromDate:(__bridge NSDate *)date];
        return text_of_string((__bridge CFStringRef)text);
    }

    reference dictionary_value(reference dictionary, reference key) override
    {
        return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), key);
    }

    QString text(reference value) override
    {
        const id object = (__bridge id)value;
        return text_of_string((__bridge CFStringRef)[object description]);
    }

    QString class_name(reference value) override
    {
        const id object = (__bridge id)value;
        return text_of_string((__bridge CFStringRef)NSStringFromClass([object class]));
    }

    QList<reference> array_items(reference array) override
    {
        const auto items = static_cast<CFArrayRef>(array);
        QList<reference> all;
        for (CFIndex i = 0; i < CFArrayGetCount(items); ++i)
            all.append(CFArrayGetValueAtIndex(items, i));
        return all;
    }
};

} // namespace

metadata_platform &system_metadata_platform()
{
    static apple_metadata platform;
    return platform;
}
