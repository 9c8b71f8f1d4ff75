#pragma once

#include <QtGlobal>

#include <array>
#include <string_view>
#include <tuple>

/// One thing that happened, as some row tells it. Texts are UTF-8 and belong to whoever gave the
/// event out.
struct event {
    /// What an event is worth where others tell of the same, see timeline.h.
    enum class rank : quint8 { own, older_reader, derived };

    /// Where it stands among all events.
    struct place {
        qint64 at = 0; ///< microseconds since 1970, UTC
        rank worth = rank::own;
        quint8 table = 0; ///< of the catalogue
        quint32 case_index = 0;
        qint64 row = 0;
        quint32 number = 0; ///< among the events of its row

        /// Whatever stands by itself comes before what may repeat it.
        bool operator<(const place &other) const
        {
            return std::tie(at, worth, case_index, table, row, number) <
                   std::tie(other.at, other.worth, other.case_index, other.table, other.row,
                            other.number);
        }
    };

    enum text { source_file, account, url, title, detail, message, text_count };

    place where;
    std::array<quint64, 2> identity{}; ///< equal for events that tell of the same thing
    quint8 time = 0;                   ///< of the table's times in the catalogue
    bool typed = false;                ///< a visit whose address was typed
    std::array<std::string_view, text_count> texts;
};
