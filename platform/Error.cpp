#include "platform/Error.h"

#include <iostream>
#include <new>
#include <stdexcept>

namespace qds {

AppError::AppError(int number, std::string description, std::string source)
    : number_(number), description_(std::move(description)), source_(std::move(source)) {}

void Raise(int number, std::string description, std::string source) {
  throw AppError(number, std::move(description), std::move(source));
}

std::string FormatErrorMessage(const AppError& e) {
  return "Err#: " + std::to_string(e.Number()) + " " + e.Description() + "\n" + e.Source();
}

AppError CurrentError(const std::string& source) {
  try {
    throw;
  } catch (const AppError& e) {
    if (!e.Source().empty()) return e;
    return AppError(e.Number(), e.Description(), source);
  } catch (const std::bad_alloc&) {
    return AppError(ErrNo::OutOfMemory, "Out of memory", source);
  } catch (const std::out_of_range& e) {
    return AppError(ErrNo::OutOfRange, e.what(), source);
  } catch (const std::exception& e) {
    return AppError(ErrNo::InvalidArgument, e.what(), source);
  } catch (...) {
    return AppError(ErrNo::InvalidArgument, "Unknown error", source);
  }
}

namespace {
ErrorReporter& Reporter() {
  static ErrorReporter reporter;
  return reporter;
}
}  // namespace

void SetErrorReporter(ErrorReporter reporter) {
  Reporter() = std::move(reporter);
}

void ReportError(const AppError& e) {
  if (Reporter()) {
    Reporter()(e);
  } else {
    std::cerr << FormatErrorMessage(e) << '\n';
  }
}

bool RunHandler(const std::string& source, HandlerMode mode, const std::function<void()>& body) {
  try {
    body();
    return true;
  } catch (...) {
    AppError e = CurrentError(source);
    if (mode == HandlerMode::Report) {
      // A reporter that itself fails must not take the loop down with it.
      try {
        ReportError(e);
      } catch (...) {
      }
    }
    return false;
  }
}

}  // namespace qds
