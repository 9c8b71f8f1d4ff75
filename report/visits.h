#pragma once

#include <QtGlobal>

#include <optional>
#include <string>
#include <string_view>

/// One visit of the text in `visited_detail`.
struct visit {
    std::optional<qint64> at;          ///< microseconds since 1970
    std::optional<quint32> transition; ///< the browser's number
};

/// Takes the next visit off the text; nothing at its end.
std::optional<visit> take_visit(std::string_view &rest);

/// "typed; from address bar, chain start": how a page was reached, in words.
std::string transition_words(quint32 transition);
/// Whether the address was typed.
bool is_typed(quint32 transition);
