#pragma once
// A program context on a fresh application folder with the settings and the
// texts open, as the studio has them for windows that ask and report.

#include <gtest/gtest.h>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modStartup.h"
#include "app/modTexts.h"
#include "tests/support/AppFolder.h"

struct SettingsApp {
  AppFolder folder;
  qds::ScopedAppContext app{folder.Folder()};

  // Texts in `language` (2: English).
  explicit SettingsApp(int language = 2) {
    EXPECT_TRUE(qds::OpenSettingsAndTexts(*app));
    if (!app->Config) return;
    app->Config->setLanguage_ID(language);
    qds::OpenTexts(*app);
  }
  qds::cConfig& Config() { return *app->Config; }
};
