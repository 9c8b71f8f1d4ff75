#include "tests/support/extraction_case.h"

using namespace Qt::StringLiterals;

extraction_case::extraction_case(const QString &os_scheme) : os_scheme_(os_scheme) {}

void extraction_case::prepare(const QStringList &tables)
{
    controller.pub_set_engine_type(engine_type);
    controller.pub_set_essentials();
    controller.pub_set_source_count(7);
    controller.pub_set_desktop_info({});
    recording_log::switch_on();

    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info source;
    source.virtual_source_path = evidence.root();
    source.source_type_internal = source_type;
    source.os_scheme_display = u"Shown "_s + os_scheme_;
    source.os_scheme_internal = os_scheme_;
    for (const account &one : std::as_const(accounts))
        source.system_account_list.append({one.system_user, one.domain_user});
    controller.pub_set_source_info(source);
    controller.pub_set_essential_for_mirva_bench_extraction(tables, {});
    controller.pub_set_result_directory(results_.path());
    controller.pub_create_db_tables();
    controller.pub_set_extended_attributes_list({});
}

void extraction_case::run(const QStringList &tables)
{
    prepare(tables);
    find();
    extract();
}

QString extraction_case::plugin_folder() const
{
    return result_folder() + u"Artifacts_Result/Opera/"_s;
}

QString extraction_case::database() const
{
    return plugin_folder() + u"Opera.sqlite"_s;
}

QList<QStringList> extraction_case::rows(const QString &query) const
{
    return result_rows(database(), query);
}

QStringList extraction_case::lines(const QString &query) const
{
    QStringList lines;
    for (const QStringList &row : rows(query))
        lines.append(row.join(u'|'));
    return lines;
}
