#include "common/media_extensions.h"
#include "common/plugin_helper_functions.h"

#include <algorithm>

namespace
{

QStringList to_string_list(std::span<const std::string_view> extensions)
{
    QStringList list;
    list.reserve(std::ssize(extensions));
    for (const std::string_view extension : extensions)
        list.append(QString::fromLatin1(extension.data(), std::ssize(extension)));
    return list;
}

/// True when the name's extension is in the list, which must be in ascending order.
bool has_extension_of(const QStringList &extensions, const QString &file_name)
{
    const qsizetype point = file_name.lastIndexOf(u'.');
    if (point < 0)
        return false;

    // Blanks and invisible marks, such as those that turn the writing direction, hide no extension.
    const auto is_foreign = [](QChar c) { return !c.isLetterOrNumber() && c != u'-' && c != u'_'; };
    QString extension = file_name.sliced(point + 1).toLower();
    extension.removeIf(is_foreign);
    return std::ranges::binary_search(extensions, QString(u'.' + extension));
}

} // namespace

void plugin_helper_functions::initialize_image_extension_list()
{
    image_extensions_ = to_string_list(known_image_extensions());
}

void plugin_helper_functions::initialize_audio_extension_list()
{
    audio_extensions_ = to_string_list(known_audio_extensions());
}

void plugin_helper_functions::initialize_video_extension_list()
{
    video_extensions_ = to_string_list(known_video_extensions());
}

bool plugin_helper_functions::check_is_image_by_extn(const QString &file_name) const
{
    return has_extension_of(image_extensions_, file_name);
}

bool plugin_helper_functions::check_is_video_by_extn(const QString &file_name) const
{
    return has_extension_of(video_extensions_, file_name);
}

bool plugin_helper_functions::check_is_audio_by_extn(const QString &file_name) const
{
    return has_extension_of(audio_extensions_, file_name);
}
