#include "common/metadata/metadata_item.h"

#include "common/values/text_values.h"

using namespace Qt::StringLiterals;

QString metadata_item::printed(const QString &name) const
{
    metadata_platform &platform = metadata_platform::current();
    const metadata_reference value(*this ? platform.copy_attribute(get(), name) : nullptr);
    return value ? not_null(platform.description(value.get())) : QString();
}

struct_GLOBAL_ARTIFACT_used_dates metadata_item::used_dates() const
{
    const auto cleaned = [](QString description) {
        return description.remove(u'(').remove(u')').remove(u'"');
    };
    QStringList dates;
    for (const QString &date : cleaned(printed(u"kMDItemUsedDates"_s)).split(u',')) {
        if (!date.trimmed().isEmpty())
            dates.append(date.trimmed());
    }
    return {not_null(cleaned(printed(u"kMDItemLastUsedDate"_s)).trimmed()),
            not_null(dates.join(u';'))};
}
