#include "sample/byte_writer.h"
#include "sample/evidence_files.h"
#include "sample/profile.h"

#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// The numbers of the commands that both kinds of session file are made of.
struct command_numbers {
    quint8 tab_navigation;
    quint8 selected_navigation;
};
constexpr command_numbers open_windows = {6, 7};
constexpr command_numbers closed_tabs = {1, 4};

/// Fields of the browser's packed records: each begins at a multiple of four bytes.
class packed_record
{
public:
    packed_record &add_number(qint64 number)
    {
        fields_.add_32(static_cast<quint32>(number));
        return *this;
    }
    packed_record &add_time(qint64 time)
    {
        fields_.add_64(static_cast<quint64>(time));
        return *this;
    }
    packed_record &add_text(const QByteArray &text) { return add_padded(text.size(), text); }
    packed_record &add_wide_text(const QString &text)
    {
        byte_writer wide;
        for (const QChar unit : text)
            wide.add_16(unit.unicode());
        return add_padded(text.size(), wide.bytes());
    }
    /// The record behind its length in bytes.
    QByteArray bytes() const
    {
        byte_writer record;
        record.add_32(static_cast<quint32>(fields_.bytes().size())).add(fields_.bytes());
        return record.bytes();
    }

private:
    packed_record &add_padded(qsizetype length, const QByteArray &bytes)
    {
        fields_.add_32(static_cast<quint32>(length)).add(bytes);
        fields_.add(QByteArray((4 - bytes.size() % 4) % 4, '\0'));
        return *this;
    }

    byte_writer fields_;
};

QByteArray command(quint8 number, const QByteArray &contents)
{
    byte_writer bytes;
    bytes.add_16(static_cast<quint16>(contents.size() + 1)).add_8(number).add(contents);
    return bytes.bytes();
}

struct navigation {
    int tab;
    int place; ///< in the tab's own list
    QByteArray url;
    QString title;
    QByteArray referrer = {};
};

/// A text that fills its last four bytes is followed by no zero byte: these end before that.
QByteArray ended_by_zero(const QByteArray &url)
{
    return !url.isEmpty() && url.size() % 4 == 0 ? url + '/' : url;
}

/// One page of a tab. Without posted data, without a referrer and with the usual referrer policy
/// (2) the address first asked for stands behind eight zero bytes and a 2.
QByteArray tab_navigation(const command_numbers &numbers, const navigation &page)
{
    constexpr int no_posted_data = 0;
    constexpr int usual_policy = 2;
    const QByteArray url = ended_by_zero(page.url);
    packed_record record;
    record.add_number(page.tab).add_number(page.place).add_text(url).add_wide_text(page.title);
    record.add_text(QByteArray("\x18\x01\x01\x01page state\x01", 15)).add_number(805306368);
    record.add_number(no_posted_data).add_text(page.referrer).add_number(usual_policy);
    record.add_text(url).add_number(0).add_time(browser_time(minutes_ago(15), 1)).add_wide_text({});
    record.add_number(200);
    return command(numbers.tab_navigation, record.bytes());
}

QByteArray selected_navigation(const command_numbers &numbers, int tab, int place)
{
    byte_writer contents;
    contents.add_32(static_cast<quint32>(tab)).add_32(static_cast<quint32>(place));
    return command(numbers.selected_navigation, contents.bytes());
}

std::vector<navigation> special_navigations()
{
    return {
        {3, 0, "https://www.example.org/start", u"Start page"_s},
        {3, 1, "https://shop.tealkettle.test/caf%C3%A9%20menu", u"Café"_s},
        {3, 2, "https://www.example.org/start", u"Start page"_s},
        {4, 0, "https://www.example.org/start", u"Start page"_s},
        {4, 1, "https://forum.birdwatch.example/thread/4", u"野鳥"_s, "https://www.example.org/b"},
        {5, 0, "file:///tmp/reading%20list.html", u"Reading list"_s},
        {5, 1, "opera://startpage/", u"Speed Dial"_s},
        {5, 2, "httpfoo:not an address", QString()},
        {6, 0, "http://vogel.example/münchen", u"Unencoded"_s},
        {6, 1, "", u"Without address"_s},
    };
}

QByteArray session_file(const command_numbers &numbers, const profile &account,
                        const std::string &purpose)
{
    byte_writer header;
    header.add("SNSS").add_32(1);
    QByteArray bytes = header.bytes();
    for (const navigation &page : special_navigations())
        bytes += tab_navigation(numbers, page);
    bytes += selected_navigation(numbers, 3, 2);

    number_source invented = account.numbers(purpose);
    const qsizetype wanted = bytes.size() + account.rows(session_kilobytes) * 1024;
    for (int tab = 10; bytes.size() < wanted; ++tab) {
        const invented_page page = make_page(invented, tab);
        bytes += tab_navigation(numbers, {tab, 0, QByteArray::fromStdString(page.url),
                                          QString::fromStdString(page.title)});
        bytes += selected_navigation(numbers, tab, 0);
    }
    return bytes;
}

/// A page whose second address breaks off at the end of the file, as after a crash.
QByteArray broken_navigation(const command_numbers &numbers)
{
    const QByteArray url = "https://tickets.northferry.example/broken-off-here";
    const QByteArray whole = tab_navigation(numbers, {99, 0, url, u"Broken off"_s});
    return whole.left(whole.lastIndexOf(url) + url.size() - 5);
}

} // namespace

void write_session_files(const profile &account)
{
    struct file {
        const char *name;
        command_numbers numbers;
        qint64 modified;
    };
    constexpr file files[] = {
        {"Current Session", open_windows, latest_instant},
        {"Current Tabs", closed_tabs, latest_instant},
        {"Last Session", open_windows, days_ago(1)},
        {"Last Tabs", closed_tabs, days_ago(1)},
    };
    for (const file &one : files) {
        QByteArray bytes = session_file(one.numbers, account, one.name);
        const QString name = QString::fromLatin1(one.name);
        if (account.generation == browser_generation::older && name == "Last Session"_L1)
            bytes += broken_navigation(one.numbers);
        write_file(account.profile_folder + name, bytes, one.modified);
    }
}

} // namespace sample
