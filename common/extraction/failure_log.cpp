#include "common/extraction/failure_log.h"

#include "common/debug_log.h"

using namespace Qt::StringLiterals;

namespace
{

constexpr int most_listed = 10;

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

void failure_log::log(const failure_lines &lines, const QString &error, const QString &query,
                      const QString &signature)
{
    if (lines.empty() || ++met_[lines.front().text] > most_listed)
        return;
    log_failure(lines, signature,
                {.path = path_, .system_user = system_user_, .error = error, .query = query});
}

failure_log::~failure_log()
{
    for (const auto &[text, times] : met_) {
        if (times > most_listed)
            debug_log(operation_tag(signature_) + u' ' + QString::number(times - most_listed) +
                          u" more such failures -----FAILED----- " + path_ + u": " +
                          QString::fromUtf8(text),
                      signature_);
    }
}

QString operation_tag(const QString &signature)
{
    QString name = signature.section(u'(', 0, 0);
    name.remove(0, name.lastIndexOf(u':') + 1);
    return u'[' + name + u']';
}
