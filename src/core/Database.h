#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// The station's one database file. Statements bind their values, so any text can stand in any column.
namespace core {

class DatabaseError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One value of a statement or a row; monostate is null.
class Value {
  public:
    Value() = default;
    Value(std::nullopt_t) {}
    Value(bool value) : value_(static_cast<std::int64_t>(value)) {}
    Value(int value) : value_(static_cast<std::int64_t>(value)) {}
    Value(std::int64_t value) : value_(value) {}
    Value(double value) : value_(value) {}
    Value(std::string value) : value_(std::move(value)) {}
    Value(std::string_view value) : value_(std::string(value)) {}
    Value(const char* value) : value_(std::string(value)) {}

    bool IsNull() const { return std::holds_alternative<std::monostate>(value_); }

    // Each reads any kind: null is empty, 0 or false; a text counts as its leading number.
    std::string Text() const;
    double Number() const;
    std::int64_t Long() const;
    bool Bool() const;

    const std::variant<std::monostate, std::int64_t, double, std::string>& Raw() const { return value_; }

  private:
    std::variant<std::monostate, std::int64_t, double, std::string> value_;
};

// A row of a result, its columns found by name in any spelling of case, or by position from 0.
// A column that the result does not have is a DatabaseError.
class Row {
  public:
    Row(std::shared_ptr<const std::vector<std::string>> columns, std::vector<Value> values)
        : columns_(std::move(columns)), values_(std::move(values)) {}

    const Value& operator[](std::string_view column) const;
    const Value& operator[](std::size_t position) const;
    std::size_t Size() const { return values_.size(); }

    bool IsNull(std::string_view column) const { return (*this)[column].IsNull(); }
    std::string Text(std::string_view column) const { return (*this)[column].Text(); }
    double Number(std::string_view column) const { return (*this)[column].Number(); }
    std::int64_t Long(std::string_view column) const { return (*this)[column].Long(); }
    bool Bool(std::string_view column) const { return (*this)[column].Bool(); }

  private:
    std::shared_ptr<const std::vector<std::string>> columns_;
    std::vector<Value> values_;
};

// The row at which a reading stands, its columns by position from 0; it is gone when the next one comes.
class RowInHand {
  public:
    explicit RowInHand(const void* statement) : statement_(statement) {}

    std::int64_t Long(int position) const;
    double Number(int position) const;
    std::string Text(int position) const;

  private:
    const void* statement_;
};

class Database {
  public:
    // Opens the delivered file; it is never created. Throws DatabaseError when it is missing, locked or damaged.
    explicit Database(const std::filesystem::path& file);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // All rows of a statement, read at once: what another routine does meanwhile cannot move them.
    std::vector<Row> Query(const std::string& sql, std::initializer_list<Value> values = {});

    // Hands the rows to `use` one after the other and keeps none: for many rows. Never wait inside, the statement is
    // open.
    void Each(const std::string& sql, std::initializer_list<Value> values,
              const std::function<void(const RowInHand&)>& use);

    // The first row, if there is one.
    std::optional<Row> First(const std::string& sql, std::initializer_list<Value> values = {});

    // The first column of all rows, as text.
    std::vector<std::string> Texts(const std::string& sql, std::initializer_list<Value> values = {});

    // Runs a statement without rows. Tells how many rows it changed.
    int Execute(const std::string& sql, std::initializer_list<Value> values = {});
    int Execute(const std::string& sql, const std::vector<Value>& values);

    // Runs `work` as one transaction: all of it is on the disk when this returns, nothing of it when `work` throws.
    // Inside another transaction it joins that one. Never wait inside: the whole desk shares this connection.
    void InTransaction(const std::function<void()>& work);

  private:
    class Engine;
    std::unique_ptr<Engine> engine_;
};

}  // namespace core
