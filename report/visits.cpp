#include "report/visits.h"

#include "report/instants.h"

#include <charconv>

namespace
{

constexpr std::string_view time_label = "Visit Timestamp (UTC): ";
constexpr std::string_view transition_label = "Transition: ";

// The browser's kinds of transition, by number, and its flags.
constexpr std::string_view kinds[] = {"link",
                                      "typed",
                                      "bookmark",
                                      "subframe, by itself",
                                      "subframe, by the user",
                                      "suggestion",
                                      "start page",
                                      "form submitted",
                                      "reload",
                                      "keyword search",
                                      "keyword search's page"};
constexpr quint32 typed_kind = 1;

struct flag {
    quint32 bit;
    std::string_view words;
};
constexpr flag flags[] = {
    {0x00800000, "blocked"},   {0x01000000, "back or forward"}, {0x02000000, "address bar"},
    {0x04000000, "home page"}, {0x08000000, "by a program"},    {0x10000000, "chain start"},
    {0x20000000, "chain end"}, {0x40000000, "client redirect"}, {0x80000000, "server redirect"},
};

std::optional<quint32> transition_of(std::string_view digits)
{
    qint64 number = 0; // stored with and without a sign
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return static_cast<quint32>(number);
}

} // namespace

std::optional<visit> take_visit(std::string_view &rest)
{
    if (rest.empty())
        return std::nullopt;
    const std::string_view one = rest.substr(0, rest.find(";;"));
    rest.remove_prefix(qMin(rest.size(), one.size() + 2));

    visit found;
    for (std::string_view left = one; !left.empty();) {
        const std::string_view part = left.substr(0, left.find(';'));
        left.remove_prefix(qMin(left.size(), part.size() + 1));
        if (part.starts_with(time_label))
            found.at = instants::of_visit(part.substr(time_label.size()));
        else if (part.starts_with(transition_label))
            found.transition = transition_of(part.substr(transition_label.size()));
    }
    return found;
}

std::string transition_words(quint32 transition)
{
    const quint32 kind = transition & 0xff;
    std::string words =
        kind < std::size(kinds) ? std::string(kinds[kind]) : "kind " + std::to_string(kind);
    std::string_view between = "; ";
    for (const flag &flag : flags) {
        if ((transition & flag.bit) == 0)
            continue;
        words += between;
        words += flag.words;
        between = ", ";
    }
    return words;
}

bool is_typed(quint32 transition)
{
    return (transition & 0xff) == typed_kind;
}
