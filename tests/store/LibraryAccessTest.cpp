#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <set>
#include <sstream>
#include <thread>

#include "cli/CommandLine.h"
#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/Files.h"
#include "store/modLibrary.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/StartedApp.h"
#include "tests/support/TempDir.h"

extern char** environ;

using namespace qds;

namespace {

// Starts the program with its error output going to `errFile`.
pid_t Spawn(const std::vector<std::string>& argv, const std::string& errFile) {
  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 2, errFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  const int rc = posix_spawn(&pid, argv[0].c_str(), &files, nullptr, args.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  return rc == 0 ? pid : -1;
}

int ExitCode(pid_t pid) {
  int status = 0;
  if (pid <= 0 || waitpid(pid, &status, 0) != pid) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Runs the program `count` times at once, the n-th with `args(n)`; each
// one's exit code and error output.
std::vector<std::pair<int, std::string>> RunAtOnce(int count,
                                                   const std::function<std::vector<std::string>(int)>& args) {
  TempDir errors;
  std::vector<pid_t> programs;
  for (int i = 0; i < count; ++i) {
    std::vector<std::string> argv = args(i);
    argv.insert(argv.begin(), QDS_APP_EXE);
    programs.push_back(Spawn(argv, errors / std::to_string(i)));
  }
  std::vector<std::pair<int, std::string>> results;
  for (int i = 0; i < count; ++i) {
    const int code = ExitCode(programs[i]);
    results.emplace_back(code, ReadAllText(errors / std::to_string(i)));
  }
  return results;
}

}  // namespace

TEST(LibraryAccess, ProgramsSavingAtOnceAllGetTheirTurn) {
  StartedApp s;
  ASSERT_TRUE(StartWithoutWindow(*s.app));  // the first start's import is done
  const std::string star = LibraryLayer(*s.app, "star", "Flat")->ID().AsString();
  TempDir files;
  // Designs of many layers, so that the writes last long enough to meet.
  constexpr int kLayers = 300;
  std::string entries =
      R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" + star + R"(","Settings":"{}"})";
  for (int i = 1; i < kLayers; ++i) {
    entries +=
        R"(,{"Key":")" + std::to_string(1000 + i) + R"(","ImageIDs":")" + star + R"(","Settings":"{}"})";
  }
  WriteUtf8Text(files / "d.json", R"({"Description":"","Entries":[)" + entries + "]}");
  // Each one reads before it writes, the way that made SQLite refuse the
  // upgrade of a read lock at once.
  constexpr int kPrograms = 8;
  for (const auto& [code, err] : RunAtOnce(kPrograms, [&](int i) {
         return std::vector<std::string>{
             "--app-dir", s.folder.Folder(), "design", "save", "parallel " + std::to_string(i),
             "--from",    files / "d.json"};
       })) {
    EXPECT_EQ(code, 0) << err;
  }
  std::set<std::string> names;
  for (DbRecordset rs = s.app->Cnn.Query("Select Name From Layer"); !rs.Eof(); rs.MoveNext()) {
    names.insert(rs.Fields(0).AsString());
  }
  EXPECT_EQ(names.size(), static_cast<std::size_t>(kPrograms));
  EXPECT_EQ(s.Count("Select Count(*) From LayerEntries"), kPrograms * kLayers);
}

TEST(LibraryAccess, AnUpgradeThatAnotherProgramMakesFirstIsNotMadeTwice) {
  StartedApp s;
  ASSERT_TRUE(StartWithoutWindow(*s.app));
  ASSERT_TRUE(s.app->Cnn.Execute("ALTER TABLE ColorFilter DROP COLUMN Layers"));
  ASSERT_TRUE(s.app->Cnn.Execute("Update DBVersion Set Version = '1.1.10'"));
  // Another program is adding the column just now, and finishes a moment later.
  DbConnection other = DbConnection::Open(s.folder.Library());
  ASSERT_TRUE(other.BeginTrans());
  ASSERT_TRUE(other.Execute("ALTER TABLE ColorFilter ADD COLUMN Layers Integer Default 0"));
  std::thread finisher([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    other.CommitTrans();
  });
  UpdateDB(*s.app);
  finisher.join();
  EXPECT_TRUE(s.messages.empty()) << s.messages.front();
  EXPECT_TRUE(s.app->Cnn.Execute("Select Layers From ColorFilter Where 1=0"));
}

TEST(LibraryAccess, EachReasonTheLibraryCannotBeUsedIsToldApart) {
  const auto init = [](const std::string& folder) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCommand(ParseCommandLine({"--app-dir", folder, "init"}), out, err), 1) << folder;
    EXPECT_TRUE(out.str().empty());
    return err.str();
  };
  std::set<std::string> said;
  const auto expectSaid = [&](const std::string& message, const std::string& subject,
                              const std::string& what) {
    EXPECT_EQ(message.rfind(subject + ": ", 0), 0u) << message;
    EXPECT_NE(message.find(what), std::string::npos) << message;
    EXPECT_TRUE(said.insert(message.substr(subject.size())).second) << "said before: " << message;
  };

  AppFolder gone;
  const std::string nowhere = gone.Folder() + "/nowhere";
  expectSaid(init(nowhere), nowhere, "The application folder does not exist");

  AppFolder missing;
  std::filesystem::remove(missing.Library());
  expectSaid(init(missing.Folder()), missing.Library(), "The library database is missing");
  EXPECT_FALSE(FileExists(missing.Library()));

  AppFolder text;
  WriteUtf8Text(text.Library(), "My notes, saved over the library by mistake.\n");
  expectSaid(init(text.Folder()), text.Library(),
             "The library is damaged or is not a database (file is not a database)");
  EXPECT_EQ(ReadAllText(text.Library()), "My notes, saved over the library by mistake.\n");

  AppFolder cut;
  const Bytes whole = ReadAllBytes(cut.Library());
  WriteAllBytes(cut.Library(), Bytes(whole.begin(), whole.begin() + whole.size() / 2));
  expectSaid(init(cut.Folder()), cut.Library(), "The library is damaged or is not a database (database disk");

  AppFolder empty;
  WriteUtf8Text(empty.Library(), "");
  expectSaid(init(empty.Folder()), empty.Library(),
             "The library is damaged or is not a database (the file is empty)");

  AppFolder noImages;
  ASSERT_TRUE(DbConnection::Open(noImages.Library()).Execute("Drop Table Images"));
  expectSaid(init(noImages.Folder()), noImages.Library(),
             "A table the program needs is missing from the library (Images)");

  // A library that can still tell its language is answered in it.
  ASSERT_TRUE(
      DbConnection::Open(noImages.Library()).Execute(R"(Update Config Set Settings='{"Language_ID":1}')"));
  EXPECT_EQ(init(noImages.Folder()),
            noImages.Library() + ": Der Bibliothek fehlt eine Tabelle, die das Programm braucht (Images)\n");

  AppFolder locked;
  DbConnection other = DbConnection::Open(locked.Library());
  ASSERT_TRUE(other.Execute("BEGIN EXCLUSIVE"));
  expectSaid(init(locked.Folder()), locked.Library(),
             "Another program is using the library and did not release it in time");
  ASSERT_TRUE(other.Execute("ROLLBACK"));
  std::ostringstream out, err;
  EXPECT_EQ(RunCommand(ParseCommandLine({"--app-dir", locked.Folder(), "init"}), out, err), 0) << err.str();
}
