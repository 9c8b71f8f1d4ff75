#include "common/evidence/source_file.h"

#include "common/evidence/file_paths.h"
#include "common/values/text_values.h"

#include <tuple>

QString path_inside_source(const QString &path, const evidence_source &source)
{
    QString inside = path;
    if (inside.startsWith(source.source_root))
        inside.remove(0, source.source_root.size());
    if (!inside.trimmed().isEmpty() && !inside.startsWith(u'/'))
        inside.prepend(u'/');
    return inside;
}

source_file::source_file(const QString &found_path, const evidence_source &source)
    : path(found_path)
{
    std::tie(system_user, domain_user) = account_of_path(path, source.source_root);
    domain_user = not_null(domain_user); // hosts name no domain for local accounts
    std::tie(stored_path, relation_path) = source_file_columns(
        path_inside_source(path, source), source.source_root, source.source_type);
}
