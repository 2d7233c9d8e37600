#include "core/Database.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <unordered_map>

#include "core/Text.h"

namespace core {

namespace {

std::string SqlText(sqlite3_value* value) {
    const auto* text = sqlite3_value_text(value);
    return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
}

// The date part 1 day, 2 month, 3 year of an ISO text; null for anything else.
template <int part>
void DatePart(sqlite3_context* context, int, sqlite3_value** arguments) {
    int year = 0;
    int month = 0;
    int day = 0;
    if (std::sscanf(SqlText(arguments[0]).c_str(), "%4d-%2d-%2d", &year, &month, &day) != 3) {
        sqlite3_result_null(context);
        return;
    }
    sqlite3_result_int(context, part == 1 ? day : part == 2 ? month : year);
}

// format(time, 'HH:MM AMPM') in the twelve-hour form that the scheduler compares: "08:05 AM", "12:00 AM" at midnight.
// The time stands in the last "h:m" of the text, so a full date-time works too. No other format is in use.
void FormatHour(sqlite3_context* context, int, sqlite3_value** arguments) {
    const std::string text = SqlText(arguments[0]);
    const auto blank = text.find(' ');
    int hour = 0;
    int minute = 0;
    const char* time = text.find(':') != std::string::npos && blank != std::string::npos && blank < text.find(':')
                           ? text.c_str() + blank + 1
                           : text.c_str();
    if (std::sscanf(time, "%2d:%2d", &hour, &minute) != 2 || hour < 0 || hour > 23 || minute < 0 || minute > 59) {
        sqlite3_result_null(context);
        return;
    }
    // A text that is already in the twelve-hour form keeps its half of the day.
    const std::string upper = UpperText(text);
    if (hour < 12 && upper.find("PM") != std::string::npos) {
        hour += 12;
    } else if (hour == 12 && upper.find("AM") != std::string::npos) {
        hour = 0;
    }
    std::array<char, 16> out{};
    std::snprintf(out.data(), out.size(), "%02d:%02d %s", hour % 12 == 0 ? 12 : hour % 12, minute,
                  hour < 12 ? "AM" : "PM");
    sqlite3_result_text(context, out.data(), -1, SQLITE_TRANSIENT);
}

void SameDate(sqlite3_context* context, int, sqlite3_value** arguments) {
    sqlite3_result_value(context, arguments[0]);
}

struct BindValue {
    SQLite::Statement& statement;
    int index;
    void operator()(std::monostate) const { statement.bind(index); }
    void operator()(std::int64_t value) const { statement.bind(index, value); }
    void operator()(double value) const { statement.bind(index, value); }
    void operator()(const std::string& value) const { statement.bind(index, value); }
};

Value Read(const SQLite::Column& column) {
    if (column.isInteger()) {
        return column.getInt64();
    }
    if (column.isFloat()) {
        return column.getDouble();
    }
    if (column.isNull()) {
        return std::nullopt;
    }
    return column.getString();
}

}  // namespace

std::string Value::Text() const {
    if (const auto* text = std::get_if<std::string>(&value_)) {
        return *text;
    }
    if (const auto* whole = std::get_if<std::int64_t>(&value_)) {
        return std::to_string(*whole);
    }
    const auto* number = std::get_if<double>(&value_);
    return number == nullptr ? std::string() : NumberText(*number);
}

double Value::Number() const {
    if (const auto* number = std::get_if<double>(&value_)) {
        return *number;
    }
    if (const auto* whole = std::get_if<std::int64_t>(&value_)) {
        return static_cast<double>(*whole);
    }
    const auto* text = std::get_if<std::string>(&value_);
    return text == nullptr ? 0 : Val(*text);
}

std::int64_t Value::Long() const {
    if (const auto* whole = std::get_if<std::int64_t>(&value_)) {
        return *whole;
    }
    return static_cast<std::int64_t>(std::clamp(std::nearbyint(Number()), -9e18, 9e18));
}

bool Value::Bool() const {
    const auto* text = std::get_if<std::string>(&value_);
    return (text != nullptr && SameText(*text, "true")) || Number() != 0;
}

const Value& Row::operator[](std::string_view column) const {
    const auto at =
        std::find_if(columns_->begin(), columns_->end(), [&](const auto& name) { return SameText(name, column); });
    if (at == columns_->end()) {
        throw DatabaseError("no such column: " + std::string(column));
    }
    return values_[static_cast<std::size_t>(at - columns_->begin())];
}

const Value& Row::operator[](std::size_t position) const {
    if (position >= values_.size()) {
        throw DatabaseError("no such column: " + std::to_string(position));
    }
    return values_[position];
}

namespace {

SQLite::Column CellOf(const void* statement, int position) {
    return static_cast<const SQLite::Statement*>(statement)->getColumn(position);
}

}  // namespace

std::int64_t RowInHand::Long(int position) const {
    return CellOf(statement_, position).getInt64();
}

double RowInHand::Number(int position) const {
    return CellOf(statement_, position).getDouble();
}

std::string RowInHand::Text(int position) const {
    return CellOf(statement_, position).getString();
}

class Database::Engine {
  public:
    explicit Engine(const std::filesystem::path& file) : connection_(file.string(), SQLite::OPEN_READWRITE) {
        connection_.setBusyTimeout(5000);
        connection_.exec("PRAGMA journal_mode=WAL");
        connection_.exec("PRAGMA synchronous=FULL");
        Register("day", 1, DatePart<1>);
        Register("month", 1, DatePart<2>);
        Register("year", 1, DatePart<3>);
        Register("cdate", 1, SameDate);
        Register("format", 2, FormatHour);
    }

    // Hands a prepared statement with its values bound to `use`, and resets it afterwards. Statements are kept;
    // one that is in use in an outer call is prepared a second time.
    template <typename Values, typename Use>
    auto With(const std::string& sql, const Values& values, const Use& use) {
        auto node = statements_.extract(sql);
        if (node.empty()) {
            Statements fresh;
            fresh.emplace(sql, std::make_unique<SQLite::Statement>(connection_, sql));
            node = fresh.extract(fresh.begin());
        }
        SQLite::Statement& statement = *node.mapped();
        int index = 0;
        for (const Value& value : values) {
            std::visit(BindValue{statement, ++index}, value.Raw());
        }
        auto result = use(statement);
        statement.reset();
        statement.clearBindings();
        statements_.insert(std::move(node));
        return result;
    }

    SQLite::Database connection_;
    bool inTransaction_ = false;

  private:
    void Register(const char* name, int arguments, void (*function)(sqlite3_context*, int, sqlite3_value**)) {
        connection_.createFunction(name, arguments, true, nullptr, function);
    }

    using Statements = std::unordered_map<std::string, std::unique_ptr<SQLite::Statement>>;

    Statements statements_;
};

namespace {

template <typename Work>
auto Guarded(const Work& work) {
    try {
        return work();
    } catch (const SQLite::Exception& failure) {
        throw DatabaseError(failure.what());
    }
}

}  // namespace

Database::Database(const std::filesystem::path& file) {
    engine_ = Guarded([&] { return std::make_unique<Engine>(file); });
}

Database::~Database() = default;

std::vector<Row> Database::Query(const std::string& sql, std::initializer_list<Value> values) {
    return Guarded([&] {
        return engine_->With(sql, values, [](SQLite::Statement& statement) {
            const int count = statement.getColumnCount();
            auto columns = std::make_shared<std::vector<std::string>>();
            for (int i = 0; i < count; ++i) {
                columns->emplace_back(statement.getColumnName(i));
            }
            std::vector<Row> rows;
            while (statement.executeStep()) {
                std::vector<Value> cells;
                cells.reserve(static_cast<std::size_t>(count));
                for (int i = 0; i < count; ++i) {
                    cells.push_back(Read(statement.getColumn(i)));
                }
                rows.emplace_back(columns, std::move(cells));
            }
            return rows;
        });
    });
}

void Database::Each(const std::string& sql, std::initializer_list<Value> values,
                    const std::function<void(const RowInHand&)>& use) {
    Guarded([&] {
        return engine_->With(sql, values, [&](SQLite::Statement& statement) {
            const RowInHand row(&statement);
            while (statement.executeStep()) {
                use(row);
            }
            return true;
        });
    });
}

std::optional<Row> Database::First(const std::string& sql, std::initializer_list<Value> values) {
    auto rows = Query(sql, values);
    return rows.empty() ? std::nullopt : std::optional<Row>(std::move(rows.front()));
}

std::vector<std::string> Database::Texts(const std::string& sql, std::initializer_list<Value> values) {
    std::vector<std::string> texts;
    for (const Row& row : Query(sql, values)) {
        texts.push_back(row[0].Text());
    }
    return texts;
}

int Database::Execute(const std::string& sql, std::initializer_list<Value> values) {
    return Guarded([&] { return engine_->With(sql, values, [](SQLite::Statement& s) { return s.exec(); }); });
}

int Database::Execute(const std::string& sql, const std::vector<Value>& values) {
    return Guarded([&] { return engine_->With(sql, values, [](SQLite::Statement& s) { return s.exec(); }); });
}

void Database::InTransaction(const std::function<void()>& work) {
    if (engine_->inTransaction_) {
        work();
        return;
    }
    Guarded([&] {
        SQLite::Transaction transaction(engine_->connection_);
        engine_->inTransaction_ = true;
        try {
            work();
        } catch (...) {
            engine_->inTransaction_ = false;
            throw;
        }
        engine_->inTransaction_ = false;
        transaction.commit();
        return true;
    });
}

}  // namespace core
