#include "report/run_record.h"

#include "report/terminal.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 longest_record = qint64{64} << 20;
constexpr size_t most_problems = 10'000;

class problem_list
{
public:
    explicit problem_list(std::vector<run_record::problem> &problems) : problems_(problems) {}

    void add(const QJsonObject &told, const QString &path)
    {
        const QString outcome = told.value("outcome"_L1).toString();
        if (outcome.isEmpty() || outcome == "read"_L1 || problems_.size() >= most_problems)
            return;
        const run_record::problem problem{outcome, path, told.value("sentence"_L1).toString()};
        const QString key = problem.outcome + u'\n' + problem.path + u'\n' + problem.sentence;
        if (seen_.contains(key))
            return;
        seen_.insert(key);
        problems_.push_back(problem);
    }

private:
    std::vector<run_record::problem> &problems_;
    QSet<QString> seen_;
};

void read_run(const QJsonObject &told, run_record &record, problem_list &problems)
{
    const QJsonObject tool = told.value("tool"_L1).toObject();
    run_record::run run{
        QString(tool.value("name"_L1).toString() + u' ' + tool.value("version"_L1).toString())
            .trimmed(),
        told.value("source"_L1).toString(),
        told.value("started"_L1).toString(),
        told.value("ended"_L1).toString(),
        told.value("cancelled"_L1).toBool(),
        0};
    const QJsonArray profiles = told.value("profiles"_L1).toArray();
    for (const auto &profile : profiles) {
        const QJsonArray files = profile.toObject().value("files"_L1).toArray();
        run.files += files.size();
        for (const auto &file : files) {
            const QString path = file.toObject().value("path"_L1).toString();
            const QJsonArray readings = file.toObject().value("readings"_L1).toArray();
            for (const auto &reading : readings)
                problems.add(reading.toObject(), path);
        }
    }
    const QJsonArray warnings = told.value("warnings"_L1).toArray();
    for (const auto &warning : warnings)
        problems.add(warning.toObject(), warning.toObject().value("path"_L1).toString());
    record.runs.push_back(run);
}

} // namespace

run_record read_run_record(const QString &folder)
{
    run_record record;
    const QString path = folder + u"/Opera_run.json";
    if (!QFileInfo::exists(path))
        return record;
    QFile file(path);
    QJsonParseError error;
    QJsonDocument document;
    if (!QFileInfo(path).isFile() || file.size() > longest_record ||
        !file.open(QIODevice::ReadOnly)) {
        terminal::print_error(path + u" cannot be read");
        return record;
    }
    document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject()) {
        terminal::print_error(path + u" is no record of a run: " + error.errorString());
        return record;
    }
    problem_list problems(record.problems);
    const QJsonArray runs = document.object().value("runs"_L1).toArray();
    for (const auto &run : runs)
        read_run(run.toObject(), record, problems);
    return record;
}
