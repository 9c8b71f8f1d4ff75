#include "common/extraction/failure_log.h"

#include "common/debug_log.h"

namespace
{

QString detail_text(failure_line::detail wanted, const failure_details &details)
{
    switch (wanted) {
    case failure_line::detail::none:
        return {};
    case failure_line::detail::path:
        return details.path;
    case failure_line::detail::system_user:
        return details.system_user;
    case failure_line::detail::error:
        return details.error;
    case failure_line::detail::query:
        return details.query;
    }
    return {};
}

} // namespace

void log_failure(const failure_lines &lines, const QString &signature,
                 const failure_details &details)
{
    for (const failure_line &line : lines)
        debug_log(QString::fromUtf8(line.text) + detail_text(line.followed_by, details), signature);
}

QString operation_tag(const QString &signature)
{
    QString name = signature.section(u'(', 0, 0);
    name.remove(0, name.lastIndexOf(u':') + 1);
    return u'[' + name + u']';
}
