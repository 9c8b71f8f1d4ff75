#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class row_cursor;

/// A sentence of the catalogue, ready to be filled in for each row.
class message_form
{
public:
    /// `place_of` gives the position of a named column in the rows, -1 where there is none.
    message_form(std::string_view form,
                 const std::function<int(std::string_view column)> &place_of);

    /// Appends the sentence on one line; values of more than 300 bytes are cut.
    void append(std::string &out, row_cursor &row) const;

private:
    struct piece {
        std::string text;         ///< in front of the value
        std::vector<int> columns; ///< the first that is not empty; none at the end
    };
    struct group {
        std::vector<piece> pieces;
        bool optional = false;
    };

    static bool append_group(std::string &out, const group &part, row_cursor &row);

    std::vector<group> groups_;
};
