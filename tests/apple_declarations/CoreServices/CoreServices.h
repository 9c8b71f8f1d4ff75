#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct __MDItem *MDItemRef;

extern "C" {
MDItemRef MDItemCreate(CFAllocatorRef allocator, CFStringRef path);
CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name);
}
