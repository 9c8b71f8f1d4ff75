#include "fuzz/fuzz_case.h"

#include "macos/opera_macos.h"
#include "tests/support/host_tables.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace
{

void must(bool condition, const char *what)
{
    if (!condition)
        qFatal("fuzz_case: %s", what);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argument_count, char ***arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: the fuzzer leaves by exit(), when parts of Qt are gone already.
    static const auto *application = new QApplication(*argument_count, *arguments);
    return application == nullptr;
}

fuzz_case::fuzz_case(const QString &os_scheme)
    : extraction_case(os_scheme),
      profile_(os_scheme == u"macOS" ? macos_profile(u"a"_s) : winos_profile(u"a"_s))
{
    accounts = {{u"a"_s, u"d"_s}};
    prepare({});

    sqlite3 *results = nullptr;
    must(sqlite3_open(database().toUtf8().constData(), &results) == SQLITE_OK &&
             sqlite3_exec(results, host_tables.constData(), nullptr, nullptr, nullptr) == SQLITE_OK,
         "cannot make the host's tables");
    sqlite3_close(results);
    QFile file(database());
    must(file.open(QIODevice::ReadOnly), "cannot read the result database");
    empty_results_ = file.readAll();
}

void fuzz_case::extract_from(const QList<profile_file> &files, const QStringList &tables,
                             const std::function<void(opera_macos &)> &further_readers)
{
    for (const profile_file &file : files)
        evidence.file(profile_ + file.name, file.content);
    controller.pub_set_essential_for_mirva_bench_extraction(tables, {});
    find();
    extract();
    if (further_readers)
        further_readers(*controller.findChild<opera_macos *>());

    log.clear();
    must(QDir(evidence.path(profile_)).removeRecursively(), "cannot remove the profile");
    QDir(plugin_folder() + u"tmp").removeRecursively();
    QDir(plugin_folder() + u"Images").removeRecursively();
    QFile results(database());
    must(results.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
             results.write(empty_results_) == empty_results_.size(),
         "cannot restore the result database");
}

void fuzz_case::extract_from_chosen(const std::vector<chosen_file> &files, const QByteArray &input)
{
    if (input.isEmpty())
        return;
    const chosen_file &file = files.at(static_cast<unsigned char>(input.front()) % files.size());
    extract_from({{file.name, input.sliced(1)}}, file.tables, file.further_readers);
}
