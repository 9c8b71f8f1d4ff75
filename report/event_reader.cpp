#include "report/event_reader.h"

#include "report/catalogue.h"
#include "report/messages.h"
#include "report/result_database.h"
#include "report/terminal.h"
#include "report/texts.h"
#include "report/visits.h"

#include <QHash>
#include <QRandomGenerator>

#include <algorithm>

namespace
{

constexpr std::string_view typed_description = "Address typed";
constexpr std::string_view typed_message = "Typed and visited [“{title}” ]{urls}";
constexpr std::string_view joint = ";++::++;";
/// What search engines for events take in one field.
constexpr size_t longest_text = 32'000;
/// Of one row that are remembered: pages with more visits are few.
constexpr size_t most_moments = 64;

const catalogue::known_table &table_of(const event &event)
{
    return catalogue::tables()[event.where.table];
}

/// Sentences of a table, bound to the places of its columns.
struct table_forms {
    std::vector<message_form> messages; ///< one for each time
    std::vector<message_form> typed;    ///< one or none
    std::vector<message_form> detail;
    std::vector<int> identity;
};

/// Reads one table of one database.
class table_events
{
public:
    table_events(result_database &database, quint8 number, event_reading &reading,
                 const std::function<bool(const event &)> &take)
        : database_(database), known_(catalogue::tables()[number]),
          stored_(database.table(known_.name)), reading_(reading), take_(take)
    {
        event_.where.table = number;
    }

    bool read(quint32 case_index)
    {
        if (stored_ == nullptr || known_.times.empty())
            return true;
        event_.where.case_index = case_index;
        prepare();
        std::optional<row_cursor> rows = database_.rows(*stored_, columns_);
        while (rows && rows->next()) {
            if (!read_row(*rows))
                return false;
        }
        return !terminal::interrupted();
    }

private:
    /// Position of the column in the rows that are asked for; -1 when the table has none.
    int place(std::string_view name)
    {
        const int column = name.empty() ? -1 : stored_->column(name);
        if (column < 0)
            return -1;
        for (size_t i = 0; i < columns_.size(); ++i)
            if (columns_[i] == column)
                return static_cast<int>(i);
        columns_.push_back(column);
        return static_cast<int>(columns_.size()) - 1;
    }

    table_forms bind(bool exchanged)
    {
        const auto place_of = [this, exchanged](std::string_view column) {
            return place(exchanged && column == "name" ? "domain_user" : column);
        };
        table_forms forms;
        for (const catalogue::time_column &time : known_.times)
            forms.messages.emplace_back(time.message, place_of);
        forms.typed.emplace_back(typed_message, place_of);
        forms.detail.emplace_back(known_.detail, place_of);
        for (const std::string_view column : known_.identity)
            forms.identity.push_back(place_of(column));
        return forms;
    }

    void prepare()
    {
        account_ = place("system_user");
        if (account_ < 0)
            account_ = place("account_name");
        domain_ = place("domain_user");
        source_ = place("source_file");
        url_ = place(known_.url);
        title_ = place(known_.title);
        older_macos_ = place(known_.older_macos);
        older_windows_ = place(known_.older_windows);
        for (const catalogue::time_column &time : known_.times)
            times_.push_back(place(time.column));
        forms_ = bind(false);
        if (known_.name == "autofill" && domain_ >= 0) {
            last_used_ = place("date_last_used");
            exchanged_ = bind(true);
        }
    }

    std::string_view text(row_cursor &row, int place)
    {
        return place < 0 ? std::string_view() : row.text(static_cast<size_t>(place));
    }

    bool is_null(const row_cursor &row, int place)
    {
        return place < 0 || row.is_null(static_cast<size_t>(place));
    }

    /// Cut, so that no field is too long for those who import it.
    std::string_view bounded(std::string_view whole, std::string &storage)
    {
        if (whole.size() <= longest_text)
            return whole;
        storage = texts::cut_to(whole, longest_text);
        storage += "… [cut, " + std::to_string(whole.size()) + " bytes]";
        return storage;
    }

    bool read_row(row_cursor &row)
    {
        // The reader of current Windows files exchanges the field's name and the domain.
        const bool exchange =
            last_used_ >= 0 && !is_null(row, domain_) && !is_null(row, last_used_);
        const table_forms &forms = exchange ? exchanged_ : forms_;
        event_.where.row = row.row_id();
        event_.where.number = 0;
        moments_.clear();
        event_.texts[event::source_file] = bounded(text(row, source_), storage_[0]);
        event_.texts[event::account] = bounded(text(row, account_), storage_[1]);
        event_.texts[event::url] = bounded(text(row, url_), storage_[2]);
        event_.texts[event::title] = bounded(text(row, title_), storage_[3]);
        detail_.clear();
        forms.detail.front().append(detail_, row);
        if (detail_.starts_with("; ")) // its first part was left out
            detail_.erase(0, 2);
        event_.texts[event::detail] = detail_;
        hash_identity(row, forms);

        const int marker = is_null(row, domain_) ? older_macos_ : older_windows_;
        const bool older = marker >= 0 && is_null(row, marker);
        for (size_t i = 0; i < times_.size(); ++i) {
            const catalogue::time_column &time = known_.times[i];
            if (is_null(row, times_[i]))
                continue;
            event_.time = static_cast<quint8>(i);
            event_.typed = false;
            event_.where.worth = time.stands == catalogue::standing::derived ? event::rank::derived
                                 : older ? event::rank::older_reader
                                         : event::rank::own;
            const quint64 kind = time.same != 0 ? static_cast<quint64>(time.same) : 256 + i;
            event_.identity = {base_[0] ^ kind * 0x9e3779b97f4a7c15U, base_[1] + kind};
            const bool wanted = time.form == instants::stored_form::visits
                                    ? read_visits(row, forms, i)
                                    : read_times(row, forms, i);
            if (!wanted)
                return false;
        }
        return true;
    }

    void hash_identity(row_cursor &row, const table_forms &forms)
    {
        static const size_t seed = QRandomGenerator::global()->generate64();
        const auto mix = [this](std::string_view value) {
            for (quint64 &hash : base_)
                hash = qHashBits(value.data(), value.size(), hash * 31 + seed);
        };
        base_ = {event_.where.case_index * 64U + event_.where.table,
                 ~quint64{event_.where.case_index * 64U + event_.where.table}};
        mix(event_.texts[event::source_file]);
        for (const int column : forms.identity)
            mix(text(row, column));
    }

    bool read_times(row_cursor &row, const table_forms &forms, size_t index)
    {
        const auto place = static_cast<size_t>(times_[index]);
        const instants::stored_form form = known_.times[index].form;
        if (form != instants::stored_form::seconds_joined) {
            const std::optional<qint64> number = row.whole_number(place);
            return !number || give(number, instants::of(*number, form), row, forms);
        }
        std::string_view rest = row.text(place);
        while (!rest.empty()) {
            const std::string_view one = rest.substr(0, rest.find(joint));
            rest.remove_prefix(qMin(rest.size(), one.size() + joint.size()));
            if (const auto at = instants::of(one, form); at && !give(1, at, row, forms))
                return false;
        }
        return true;
    }

    bool read_visits(row_cursor &row, const table_forms &forms, size_t index)
    {
        std::string_view rest = row.text(static_cast<size_t>(times_[index]));
        while (const std::optional<visit> visit = take_visit(rest)) {
            detail_.clear();
            event_.typed = visit->transition && is_typed(*visit->transition);
            if (visit->transition)
                detail_ = transition_words(*visit->transition);
            event_.texts[event::detail] = detail_;
            if (visit->at && !give(1, visit->at, row, forms))
                return false;
        }
        detail_.clear();
        event_.texts[event::detail] = detail_;
        return true;
    }

    /// Whether the row itself has told of a derived event already: mostly so, and cheaper to notice
    /// here than behind the sorting.
    bool repeats_own(qint64 at)
    {
        const char same = known_.times[event_.time].same;
        if (same == 0)
            return false;
        const std::pair<char, qint64> moment(same, at);
        if (std::ranges::find(moments_, moment) != moments_.end())
            return event_.where.worth == event::rank::derived;
        if (moments_.size() < most_moments)
            moments_.push_back(moment);
        return false;
    }

    bool give(std::optional<qint64> stored, std::optional<qint64> at, row_cursor &row,
              const table_forms &forms)
    {
        if (!at) {
            reading_.impossible_times += stored && *stored != 0 ? 1 : 0;
            return true;
        }
        if (repeats_own(*at)) {
            ++reading_.repeated;
            return true;
        }
        event_.where.at = *at;
        message_.clear();
        (event_.typed ? forms.typed.front() : forms.messages[event_.time]).append(message_, row);
        event_.texts[event::message] = message_;
        const bool wanted = take_(event_);
        ++event_.where.number;
        return wanted;
    }

    result_database &database_;
    const catalogue::known_table &known_;
    const stored_table *stored_;
    event_reading &reading_;
    const std::function<bool(const event &)> &take_;
    std::vector<int> columns_;
    std::vector<int> times_;
    table_forms forms_;
    table_forms exchanged_;
    int account_ = -1;
    int domain_ = -1;
    int source_ = -1;
    int url_ = -1;
    int title_ = -1;
    int older_macos_ = -1;
    int older_windows_ = -1;
    int last_used_ = -1;
    event event_;
    std::array<quint64, 2> base_{};
    std::array<std::string, 4> storage_;
    std::string detail_;
    std::string message_;
    std::vector<std::pair<char, qint64>> moments_; ///< of the row, by what they tell of
};

} // namespace

event_reading read_events(result_database &database, quint32 case_index,
                          const std::function<bool(const event &)> &take)
{
    event_reading reading;
    const size_t count = catalogue::tables().size();
    for (size_t table = 0; table < count; ++table) {
        table_events events(database, static_cast<quint8>(table), reading, take);
        if (!events.read(case_index))
            break;
    }
    return reading;
}

std::string_view description_of(const event &event)
{
    return event.typed ? typed_description : table_of(event).times[event.time].description;
}

bool is_activity(const event &event)
{
    return table_of(event).times[event.time].is_activity;
}
