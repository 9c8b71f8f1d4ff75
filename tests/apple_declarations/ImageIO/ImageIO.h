#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <cstddef>

typedef struct CGImageSource *CGImageSourceRef;

extern "C" {
extern const CFStringRef kCGImagePropertyGPSDictionary;
extern const CFStringRef kCGImagePropertyGPSLatitude;
extern const CFStringRef kCGImagePropertyGPSLatitudeRef;
extern const CFStringRef kCGImagePropertyGPSLongitude;
extern const CFStringRef kCGImagePropertyGPSLongitudeRef;
CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options);
CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source, size_t index,
                                                   CFDictionaryRef options);
}
