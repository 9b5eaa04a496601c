// The file and folder dialogs on real folders, driven headless as a user
// would: clicks on the lists, typing into the box, Return and Escape.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>

#include "platform/DrawingContext.h"
#include "platform/stock/cwFolderLists.h"
#include "tests/support/Golden.h"
#include "tests/support/SettingsApp.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiDriver.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwFileDialog.h"
#include "widgets/cwFolderDialog.h"
#include "widgets/cwTextBox.h"

using namespace qds;
namespace fs = std::filesystem;

namespace {

// Writes down the events it hears from below, the platform's own left out.
struct Owner : cfForm {
  std::vector<std::string> heard;
  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override {
    if (name.rfind("W_", 0) == 0) return;
    heard.push_back(source.Key() + ":" + name + (args.empty() ? "" : "=" + args[0].AsString()));
  }
};

// Types `text` into the box, key by key.
void PushType(UiDriver& ui, cwTextBox& box, const std::string& text) {
  box.SetFocus();
  for (char32_t c : DecodeUtf8(text))
    ui.Backend().Push({UiEvent::Type::KeyPress, box.Form(), 0, 0, static_cast<int>(c), 0, 0});
}

// Replaces what the box holds by typing `text`.
void PushRetype(UiDriver& ui, cwTextBox& box, const std::string& text) {
  box.SelectAll();
  PushType(ui, box, text);
}

// A press and release (or a double click) on a row a list shows.
void PushAt(UiDriver& ui, const WidgetPoint& p, bool twice = false) {
  ASSERT_NE(p.widget, nullptr);
  double x, y;
  p.widget->FormPosition(x, y);
  cfForm& form = *p.widget->Form();
  x = (x + p.x) * form.Zoom(), y = (y + p.y) * form.Zoom();
  ui.Backend().Push({UiEvent::Type::MouseMove, &form, 0, 0, 0, x, y});
  ui.Backend().Push({UiEvent::Type::MouseDown, &form, Button::Left, 0, 0, x, y});
  ui.Backend().Push({UiEvent::Type::MouseUp, &form, Button::Left, 0, 0, x, y});
  if (twice) ui.Backend().Push({UiEvent::Type::DblClick, &form, Button::Left, 0, 0, x, y});
}

void Touch(const std::string& path) {
  std::ofstream(path) << "<svg/>";
}

std::vector<std::string> Rows(const cwListBase& list) {
  std::vector<std::string> rows;
  for (int i = 0; i < list.ListCount(); ++i) rows.push_back(list.List(i));
  return rows;
}

// The folder without its trailing "/", as the lists name it.
std::string Bare(const std::string& folder) {
  return folder.substr(0, folder.size() - 1);
}

// Sets an environment variable for one scope.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    ::setenv(name, value.c_str(), 1);
  }
  ~ScopedEnv() {
    if (old_) {
      ::setenv(name_, old_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

// The dialog's picture with the named parts painted over: the folder rows
// and a typed path show where the test's temporary folder lies, which
// changes from run to run.
SurfacePtr Masked(cfForm& dialog, Widget& chooser, std::initializer_list<const char*> parts) {
  SurfacePtr shot = dialog.Surface()->Copy();
  DrawingContext ctx(shot);
  ctx.Scale(dialog.Zoom(), dialog.Zoom());
  ctx.SetSourceColor(0xFF00FF);
  for (const char* key : parts) {
    Widget& part = *chooser.Find(key);
    double x, y;
    part.FormPosition(x, y);
    ctx.Rectangle(x, y, part.Width(), part.Height());
    ctx.Fill();
  }
  return shot;
}

struct Studio {
  UiDriver ui;
  SettingsApp studio;
  Owner owner;
  TempDir dir;
  Studio() {
    owner.Resize(500, 400);
    owner.Show();
    fs::create_directory(dir / "sub");
    fs::create_directory(dir / "other");
    Touch(dir / "a.svg");
    Touch(dir / "b.SVG");
    Touch(dir / "notes.txt");
    Touch(dir / "sub/inner.svg");
    ui.Root().DoEvents();
  }
  ~Studio() { ui.Backend().OnIdle = nullptr; }
};

}  // namespace

TEST(FileDialog, OpenTakesAnExistingFileOfItsExtensionAndRefusesAMissingOne) {
  Studio s;
  cfToolDialog dialog;
  auto made = std::make_unique<cwFileDialog>();
  cwFileDialog& files = *made;
  files.setSelectedPath(s.dir.Path());
  files.setFileExtension("svg");
  auto& box = *files.Find<cwTextBox>("txtFile");
  auto& list = *files.Find<cwFileList>("FileList");
  int result = -1;
  s.ui.WhileOpen({[&] {
                    // Only the pictures of the extension, whatever their case.
                    EXPECT_EQ(Rows(list), (std::vector<std::string>{"a.svg", "b.SVG"}));
                    EXPECT_TRUE(box.HasFocus());
                    EXPECT_TRUE(MatchesGolden(Masked(dialog, files, {"DirList"}), "file_dialog"));
                    PushAt(s.ui, list.W_ItemPoint("b.SVG"));
                  },
                  [&] {
                    EXPECT_EQ(box.Text(), "b.SVG");
                    EXPECT_EQ(files.Filepath(), s.dir / "b.SVG");
                    PushRetype(s.ui, box, "gone.svg");
                    s.ui.PushKey(dialog, Key::Return);
                  },
                  [&] {
                    // Still open, and it says why.
                    EXPECT_TRUE(dialog.Showing());
                    EXPECT_EQ(files.Message(), "The file does not exist.");
                    PushAt(s.ui, list.W_ItemPoint("a.svg"));
                  },
                  [&] {
                    EXPECT_EQ(files.Message(), "");
                    s.ui.PushClick(*files.Find("btnOk"));
                  }});
  dialog.ShowWidget(std::move(made), "Open", 10, 10, 440, 300, result);
  EXPECT_EQ(result, ToolResult::Ok);
  EXPECT_EQ(files.Filepath(), s.dir / "a.svg");
  EXPECT_EQ(files.FileName(), "a.svg");
  EXPECT_EQ(files.SelectedPath(), s.dir.Path());
  // The owner heard the names as they came into the box.
  EXPECT_NE(std::find(s.owner.heard.begin(), s.owner.heard.end(), "ToolWidget:Change=b.SVG"),
            s.owner.heard.end());

  // A double click on a file is Ok; Escape is Cancel.
  auto again = std::make_unique<cwFileDialog>();
  cwFileDialog& second = *again;
  second.setSelectedPath(s.dir.Path());
  s.ui.WhileOpen({[&] { PushAt(s.ui, second.Find("FileList")->W_ItemPoint("notes.txt"), true); }});
  dialog.ShowWidget(std::move(again), "Open", 10, 10, 440, 300, result);
  EXPECT_EQ(result, ToolResult::Ok);
  EXPECT_EQ(second.Filepath(), s.dir / "notes.txt");
  s.ui.WhileOpen({[&] { s.ui.PushKey(dialog, Key::Escape); }});
  dialog.ShowWidget(std::make_unique<cwFileDialog>(), "Open", 10, 10, 440, 300, result);
  EXPECT_EQ(result, ToolResult::Cancel);
}

TEST(FileDialog, SaveJoinsFolderAndNameAndRefusesAFolderThatIsNotThere) {
  Studio s;
  cfToolDialog dialog;
  auto made = std::make_unique<cwFileDialog>();
  cwFileDialog& files = *made;
  files.setFileDialogType(FileDialogType::Save);
  // One "/" between folder and name, whether the folder ends in one or not.
  files.setFileName("new.svg");
  ASSERT_TRUE(files.setSelectedPath(s.dir.Path()));
  EXPECT_EQ(files.Filepath(), s.dir / "new.svg");
  ASSERT_TRUE(files.setSelectedPath(Bare(s.dir.Path())));
  EXPECT_EQ(files.SelectedPath(), Bare(s.dir.Path()));
  EXPECT_EQ(files.Filepath(), s.dir / "new.svg");
  ASSERT_TRUE(files.setSelectedPath("/"));
  EXPECT_EQ(files.Filepath(), "/new.svg");
  EXPECT_FALSE(files.setSelectedPath(s.dir / "nowhere"));
  EXPECT_EQ(files.SelectedPath(), "/");
  files.setSelectedPath(s.dir.Path());

  auto& box = *files.Find<cwTextBox>("txtFile");
  int result = -1;
  s.ui.WhileOpen({[&] {
                    PushRetype(s.ui, box, "nowhere/new.svg");
                    s.ui.PushKey(dialog, Key::Return);
                  },
                  [&] {
                    EXPECT_TRUE(dialog.Showing());
                    EXPECT_EQ(files.Message(), "The target folder does not exist.");
                    EXPECT_EQ(box.Text(), "nowhere/new.svg");
                    PushRetype(s.ui, box, "new.svg");
                    s.ui.PushKey(dialog, Key::Return);
                  }});
  dialog.ShowWidget(std::move(made), "Save", 10, 10, 440, 300, result);
  // A new name in a folder that is there is fine to save under.
  EXPECT_EQ(result, ToolResult::Ok);
  EXPECT_EQ(files.Filepath(), s.dir / "new.svg");
}

TEST(FileDialog, ATypedPathMovesTheListsOnlyToAFolderThatIsThere) {
  Studio s;
  auto& files = s.owner.Children().Add<cwFileDialog>("dlgFile");
  files.Move(0, 0, 440, 300);
  files.setSelectedPath(s.dir.Path());
  auto& box = *files.Find<cwTextBox>("txtFile");
  auto& dirs = *files.Find<cwDirList>("DirList");
  s.ui.Root().DoEvents();
  box.SetFocus();

  // A folder named on the way moves both lists, and the name stays to type on.
  s.ui.Type(s.owner, "sub/x.svg");
  EXPECT_EQ(box.Text(), "x.svg");
  EXPECT_EQ(dirs.Path(), s.dir / "sub");
  EXPECT_EQ(files.SelectedPath(), s.dir / "sub");
  EXPECT_EQ(Rows(*files.Find<cwFileList>("FileList")), std::vector<std::string>{"inner.svg"});
  EXPECT_EQ(files.Filepath(), s.dir / "sub/x.svg");
  {
    ScopedEnv home("HOME", s.dir / "other");
    box.SelectAll();
    s.ui.Type(s.owner, "~/y.svg");
    EXPECT_EQ(files.SelectedPath(), s.dir / "other");
    EXPECT_EQ(box.Text(), "y.svg");
  }
  // One that is not there leaves lists and text alone.
  box.SelectAll();
  s.ui.Type(s.owner, "missing/z.svg");
  EXPECT_EQ(box.Text(), "missing/z.svg");
  EXPECT_EQ(files.SelectedPath(), s.dir / "other");
  // A whole path given at once, as a paste brings it.
  files.setFileName(s.dir / "sub/q.svg");
  EXPECT_EQ(files.SelectedPath(), s.dir / "sub");
  EXPECT_EQ(files.FileName(), "q.svg");
  // Pointed at a folder that is missing, or that cannot be read, it stays
  // and says so.
  EXPECT_FALSE(files.setSelectedPath(s.dir / "nowhere"));
  EXPECT_EQ(files.SelectedPath(), s.dir / "sub");
  EXPECT_EQ(files.Message(), "The folder cannot be opened.");
  fs::create_directory(s.dir / "locked");
  fs::permissions(s.dir / "locked", fs::perms::none);
  if (::geteuid() != 0) {  // root reads any folder
    EXPECT_FALSE(files.setSelectedPath(s.dir / "locked"));
    EXPECT_EQ(files.SelectedPath(), s.dir / "sub");
    EXPECT_EQ(Bare(files.Find<cwDirList>("DirList")->Path()), Bare(s.dir / "sub"));
  }
  fs::permissions(s.dir / "locked", fs::perms::owner_all);

  // A click on a folder lists its files.
  PushAt(s.ui, dirs.W_ItemPoint(Bare(s.dir.Path()).substr(Bare(s.dir.Path()).rfind('/') + 1)));
  s.ui.Root().DoEvents();
  EXPECT_EQ(files.SelectedPath(), Bare(s.dir.Path()));
  EXPECT_EQ(Rows(*files.Find<cwFileList>("FileList")),
            (std::vector<std::string>{"a.svg", "b.SVG", "notes.txt"}));
}

TEST(FolderDialog, AClickOrTypingChoosesTheFolderOkTellsItAndEscapeDoesNot) {
  Studio s;
  cfToolDialog dialog;
  auto made = std::make_unique<cwFolderDialog>();
  cwFolderDialog& folders = *made;
  std::vector<std::string> told;
  folders.ValueChanged = [&](std::string folder) { told.push_back(folder); };
  folders.setFolder(s.dir.Path());
  auto& box = *folders.Find<cwTextBox>("txtFolder");
  auto& dirs = *folders.Find<cwDirList>("DirList");
  int result = -1;
  s.ui.WhileOpen(
      {[&] {
         EXPECT_EQ(dirs.Path(), Bare(s.dir.Path()));
         EXPECT_TRUE(box.HasFocus());
         EXPECT_TRUE(MatchesGolden(Masked(dialog, folders, {"DirList", "txtFolder"}), "folder_dialog"));
         PushAt(s.ui, dirs.W_ItemPoint("sub"));
       },
       [&] {
         // The whole path goes into the box; the list stays to click on.
         EXPECT_EQ(box.Text(), s.dir / "sub");
         EXPECT_EQ(dirs.Path(), Bare(s.dir.Path()));
         PushRetype(s.ui, box, s.dir / "other");
       },
       [&] {
         EXPECT_EQ(dirs.Path(), s.dir / "other");
         EXPECT_EQ(box.Text(), s.dir / "other");
         // On to a folder that is not there: the list stays.
         PushType(s.ui, box, "/absent");
       },
       [&] {
         EXPECT_EQ(dirs.Path(), s.dir / "other");
         s.ui.PushKey(dialog, Key::Return);
       },
       [&] {
         EXPECT_TRUE(dialog.Showing());
         EXPECT_EQ(folders.Message(), "The target folder does not exist.");
         EXPECT_TRUE(told.empty());
         PushRetype(s.ui, box, s.dir / "sub");
         s.ui.PushKey(dialog, Key::Return);
       }});
  s.owner.heard.clear();
  dialog.ShowWidget(std::move(made), "Folder", 10, 10, 360, 320, result);
  EXPECT_EQ(result, ToolResult::Ok);
  EXPECT_EQ(told, std::vector<std::string>{s.dir / "sub"});
  EXPECT_NE(
      std::find(s.owner.heard.begin(), s.owner.heard.end(), "ToolWidget:ValueChanged=" + (s.dir / "sub")),
      s.owner.heard.end());

  auto again = std::make_unique<cwFolderDialog>();
  again->setFolder(s.dir.Path());
  again->ValueChanged = [&](std::string folder) { told.push_back(folder); };
  s.owner.heard.clear();
  s.ui.WhileOpen({[&] { s.ui.PushKey(dialog, Key::Escape); }});
  dialog.ShowWidget(std::move(again), "Folder", 10, 10, 360, 320, result);
  EXPECT_EQ(result, ToolResult::Cancel);
  EXPECT_EQ(told.size(), 1u);
  for (const std::string& event : s.owner.heard) EXPECT_EQ(event.find("ValueChanged"), std::string::npos);
}

TEST(FolderDialog, WithoutAFileManagerTheExplorerButtonSaysSo) {
  Studio s;
  TempDir emptyBin;
  ScopedEnv path("PATH", Bare(emptyBin.Path()));
  auto& folders = s.owner.Children().Add<cwFolderDialog>("dlgFolder");
  folders.Move(0, 0, 360, 320);
  folders.setFolder(s.dir / "sub");
  s.ui.Root().DoEvents();
  EXPECT_EQ(folders.Message(), "");
  s.ui.Click(*folders.Find("btnExplorer"));
  EXPECT_EQ(folders.Message(), "The file manager could not be started.");
  // Typing on clears it; the dialog goes on working.
  folders.Find<cwTextBox>("txtFolder")->SetFocus();
  s.ui.Type(s.owner, "x");
  EXPECT_EQ(folders.Message(), "");
}
