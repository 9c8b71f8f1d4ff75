// The few declarations of the system's header that our code uses, for a syntax check elsewhere.
#pragma once

typedef const void *CFTypeRef;
typedef const struct __CFAllocator *CFAllocatorRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFDictionary *CFDictionaryRef;
typedef const struct __CFArray *CFArrayRef;
typedef const struct __CFURL *CFURLRef;
typedef long CFIndex;
typedef unsigned int CFStringEncoding;
typedef unsigned char Boolean;
typedef unsigned char UInt8;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;
void CFRelease(CFTypeRef value);
CFStringRef CFCopyDescription(CFTypeRef value);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text,
                                      CFStringEncoding encoding);
const char *CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);
CFStringEncoding CFStringGetSystemEncoding(void);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size,
                           CFStringEncoding encoding);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8 *path,
                                                 CFIndex length, Boolean is_folder);
const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);
CFIndex CFArrayGetCount(CFArrayRef array);
const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
}
