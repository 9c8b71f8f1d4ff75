#pragma once

#ifndef __OBJC__
#error "for Objective-C++ alone"
#endif

typedef long NSInteger;

__attribute__((objc_root_class))
@interface NSObject
+ (instancetype)alloc;
- (instancetype)init;
- (Class)class;
@property(readonly) id description;
@end

@interface NSString : NSObject
@end

@interface NSDate : NSObject
@end

@interface NSLocale : NSObject
+ (instancetype)localeWithLocaleIdentifier:(NSString *)identifier;
@end

@interface NSTimeZone : NSObject
+ (instancetype)timeZoneForSecondsFromGMT:(NSInteger)seconds;
@end

@interface NSDateFormatter : NSObject
- (void)setDateFormat:(NSString *)format;
- (void)setLocale:(NSLocale *)locale;
- (void)setTimeZone:(NSTimeZone *)zone;
- (NSString *)stringFromDate:(NSDate *)date;
@end

// A constant string literal needs this class on other systems.
@interface NXConstantString : NSString
@end

extern "C" NSString *NSStringFromClass(Class type);
