#pragma once
// The one run-time error type of the program and the helper that every event
// handler runs inside, so that no exception ever reaches the event loop.

#include <exception>
#include <functional>
#include <string>

namespace qds {

// Numbers follow the classic runtime's numbering, because users and the
// message texts quote them ("Err#: 9 ...").
namespace ErrNo {
constexpr int InvalidArgument = 5;  // invalid procedure call or argument
constexpr int Overflow = 6;
constexpr int OutOfMemory = 7;
constexpr int OutOfRange = 9;  // subscript out of range
constexpr int TypeMismatch = 13;
constexpr int BadFileName = 52;  // a name that cannot be used in its folder
constexpr int FileNotFound = 53;
constexpr int FileAccess = 75;  // path/file access error
constexpr int PathNotFound = 76;
constexpr int DuplicateKey = 457;  // key already associated with an element
constexpr int InvalidData = 321;   // invalid file format / damaged bytes
constexpr int Database = 3001;     // base for SQL errors that carry no own code
}  // namespace ErrNo

class AppError : public std::exception {
 public:
  AppError(int number, std::string description, std::string source = {});

  int Number() const noexcept { return number_; }
  const std::string& Description() const noexcept { return description_; }
  const std::string& Source() const noexcept { return source_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int number_;
  std::string description_;
  std::string source_;
};

[[noreturn]] void Raise(int number, std::string description, std::string source = {});

// "Err#: " + number + " " + description + line break + source.
std::string FormatErrorMessage(const AppError& e);

// Converts whatever was thrown (AppError, std::exception, anything) into an
// AppError with the given source; keeps the source of an AppError that has one.
AppError CurrentError(const std::string& source);

enum class HandlerMode { Report, Silent };

// Where reporting handlers send their error; the application installs its
// message box here. Without one, the message goes to standard error.
using ErrorReporter = std::function<void(const AppError& error)>;
void SetErrorReporter(ErrorReporter reporter);
void ReportError(const AppError& e);

// Runs one event handler. An error ends the handler's work: in Report mode it
// is shown through the error reporter, in Silent mode it is dropped (the
// design view's handlers treat a failed add of a duplicate key as normal).
// Returns true when the handler ran to its end.
bool RunHandler(const std::string& source, HandlerMode mode, const std::function<void()>& body);

}  // namespace qds
