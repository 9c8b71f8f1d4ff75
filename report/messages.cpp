#include "report/messages.h"

#include "report/result_database.h"
#include "report/texts.h"

message_form::message_form(std::string_view form,
                           const std::function<int(std::string_view column)> &place_of)
{
    groups_.emplace_back();
    piece current;
    const auto end_group = [this, &current](bool next_is_optional) {
        groups_.back().pieces.push_back(std::exchange(current, piece()));
        groups_.emplace_back().optional = next_is_optional;
    };
    while (!form.empty()) {
        const char letter = form.front();
        form.remove_prefix(1);
        if (letter == '[' || letter == ']') {
            end_group(letter == '[');
        } else if (letter == '{') {
            std::string_view columns = form.substr(0, form.find('}'));
            form.remove_prefix(columns.size() + 1);
            while (!columns.empty()) {
                const std::string_view name = columns.substr(0, columns.find('|'));
                columns.remove_prefix(std::min(columns.size(), name.size() + 1));
                current.columns.push_back(place_of(name));
            }
            groups_.back().pieces.push_back(std::exchange(current, piece()));
        } else {
            current.text += letter;
        }
    }
    end_group(false);
}

void message_form::append(std::string &out, row_cursor &row) const
{
    for (const group &part : groups_) {
        const size_t before = out.size();
        if (!append_group(out, part, row) && part.optional)
            out.resize(before);
    }
}

bool message_form::append_group(std::string &out, const group &part, row_cursor &row)
{
    constexpr size_t longest_value = 300;
    bool complete = true;
    for (const piece &one : part.pieces) {
        out += one.text;
        std::string_view value;
        for (size_t i = 0; i < one.columns.size() && value.empty(); ++i) {
            if (one.columns[i] >= 0)
                value = row.text(static_cast<size_t>(one.columns[i]));
        }
        complete = complete && (one.columns.empty() || !value.empty());
        const std::string_view shown = texts::cut_to(value, longest_value);
        texts::append_visible(out, shown);
        if (shown.size() < value.size())
            out += "…";
    }
    return complete;
}
