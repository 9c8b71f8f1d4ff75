#include "sample/pretty_json.h"

#include "sample/evidence_files.h"

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

QByteArray quoted(const QString &text)
{
    QString escaped;
    for (const QChar character : text) {
        if (character == u'"' || character == u'\\')
            escaped += u'\\' + QString(character);
        else if (character == u'<' || character < u' ')
            escaped +=
                u"\\u" + QString::number(character.unicode(), 16).toUpper().rightJustified(4, u'0');
        else
            escaped += character;
    }
    return '"' + escaped.toUtf8() + '"';
}

} // namespace

pretty_json::pretty_json(const QString &path) : file_(path)
{
    make_folder_of(path);
    if (!file_.open(QIODevice::WriteOnly))
        fail_to_write(file_);
}

void pretty_json::write(const QByteArray &bytes)
{
    if (file_.write(bytes) != bytes.size())
        fail_to_write(file_);
}

void pretty_json::begin_line()
{
    write('\n' + QByteArray(qsizetype{3} * depth_, ' '));
}

void pretty_json::begin_value(const char *key)
{
    if (levels_.empty())
        return;
    level &around = levels_.back();
    if (around.is_array) {
        write(around.is_empty ? " " : ", ");
    } else {
        if (!around.is_empty)
            write(",");
        begin_line();
        write(quoted(QString::fromUtf8(key)) + ": ");
    }
    around.is_empty = false;
}

void pretty_json::open_object(const char *key)
{
    begin_value(key);
    write("{");
    levels_.push_back({.is_array = false});
    ++depth_;
}

void pretty_json::close_object()
{
    levels_.pop_back();
    --depth_;
    begin_line();
    write("}");
}

void pretty_json::open_array(const char *key)
{
    begin_value(key);
    write("[");
    levels_.push_back({.is_array = true});
}

void pretty_json::close_array()
{
    write(levels_.back().is_empty ? "  ]" : " ]");
    levels_.pop_back();
}

void pretty_json::add_text(const char *key, const QString &text)
{
    begin_value(key);
    write(quoted(text));
}

void pretty_json::add_number(const char *key, qint64 number)
{
    begin_value(key);
    write(QByteArray::number(number));
}

void pretty_json::finish(qint64 modified)
{
    write("\n");
    if (!file_.flush())
        fail_to_write(file_);
    file_.close();
    date_file(file_.fileName(), modified);
}

} // namespace sample
