#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/Error.h"

using namespace qds;

TEST(Error, HandlersReportOrSwallowAndTheLoopGoesOn) {
  std::vector<std::string> shown;
  SetErrorReporter([&](const AppError& e) { shown.push_back(FormatErrorMessage(e)); });

  EXPECT_TRUE(RunHandler("cvIconExportView:btnExport_Click", HandlerMode::Report, [] {}));
  EXPECT_FALSE(RunHandler("cvIconExportView:btnExport_Click", HandlerMode::Report,
                          [] { Raise(ErrNo::OutOfRange, "Subscript out of range"); }));
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0], "Err#: 9 Subscript out of range\ncvIconExportView:btnExport_Click");

  // Errors from the standard library are reported the same way.
  EXPECT_FALSE(
      RunHandler("cvIconSelectView:Load", HandlerMode::Report, [] { throw std::runtime_error("bad"); }));
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_EQ(shown[1], "Err#: 5 bad\ncvIconSelectView:Load");

  // The design view's handlers end silently.
  EXPECT_FALSE(RunHandler("cvIconDesignView:mnuPaste", HandlerMode::Silent,
                          [] { Raise(ErrNo::DuplicateKey, "duplicate"); }));
  EXPECT_EQ(shown.size(), 2u);

  // A reporter that fails itself does not escape the handler.
  SetErrorReporter([](const AppError&) { throw std::runtime_error("message box gone"); });
  EXPECT_FALSE(RunHandler("x", HandlerMode::Report, [] { Raise(1, "y"); }));
  SetErrorReporter(nullptr);
}
