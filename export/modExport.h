#pragma once
// The batch export: every combination of base icon and overlay icon, drawn
// from the design's layers, cut or trimmed to the asked size, and written in
// the chosen format under a name built by rule. The export view and the
// command line both drive it through an observer.

#include <cstdint>
#include <string>

#include "platform/Bytes.h"

namespace qds {

struct AppContext;

struct ExportOptions {
  std::string Format = "PNG";  // PNG, JPG, BMP, GIF, ICO, SVG, SVGZ
  int Width = 32, Height = 32;
  bool AdjustSize = false;
  std::string IcoSizes = "16,20,24,32,40,48,64,256";
  std::string Folder;
  bool CreateFolderFormat = false;
  bool CreateFolderSize = false;
  std::string Prefix;
  // Name and extension parts: the base icon's name, the overlay's, a text,
  // or (extension only) nothing.
  enum class Part { Base, Overlay, Text, None };
  Part NamePart = Part::Base;
  std::string NameText;
  Part ExtPart = Part::None;
  std::string ExtText;
  std::string Delimiter = "_";
  bool RemoveBlank = false;
  bool RenameDuplicates = false;
  bool SizeExt = true;
  bool ColorsinPerc = false;
  int JPGQuality = 90;
  std::int64_t BackgroundColor = 0xFFFFFF;  // JPG and BMP
  bool ExportHasBaseIcons = true;
  bool ExportHasOverlayIcons = false;
  std::string ExportOverlayKey = "_Overlay";
};

// Answers of the overwrite question, as the message box gives them.
namespace Answer {
constexpr int Cancel = 2, YesToAll = 5, Yes = 6, No = 7;
}

class ExportObserver {
 public:
  virtual ~ExportObserver() = default;
  virtual void Progress(int done, int total, const std::string& caption) {
    (void)done, (void)total, (void)caption;
  }
  // A file of an earlier run has the name: Yes, YesToAll, No (skip) or
  // Cancel (end the run). Never asked for a name this run has used.
  virtual int AskOverwrite(const std::string& fileName) {
    (void)fileName;
    return Answer::No;
  }
  // A message by its text key: "FolderMissing", "NothingToExport",
  // "ErrorCreateFolder", "SaveError". The detail of "SaveError" is
  // "<path>: <reason>".
  virtual void Message(const std::string& key, const std::string& detail) { (void)key, (void)detail; }
  // One turn of the event loop per image; true asks the run to stop.
  virtual bool DoEventsAndCheckStop() { return false; }
  virtual void ImageDone(const std::string& path, bool written) { (void)path, (void)written; }
};

struct ExportResult {
  int Images = 0;   // drawn
  int Written = 0;  // files written
  int Skipped = 0;  // files of earlier runs (or of others) left as they were
  // Not written because an earlier image of this run had the same name:
  // icons of one name from different styles or themes.
  int Collisions = 0;
  // Files that could not be written (their name is a folder's, say, or
  // nothing of the picture is left); the run went on with the others.
  int Failed = 0;
  bool Completed = false;  // false: stopped, cancelled or failed
  std::string Error;       // the message key of a failure
};

// Every file is named by NewFile: written in full before it has a name, and
// the name claimed in one step, so that parallel runs into one folder never
// replace each other's files. A file that fails is counted and reported and
// the run goes on; a failure that would repeat for every file (no memory, a
// full disk, a folder that takes no files) ends the run.
ExportResult RunExport(AppContext& app, const ExportOptions& options, ExportObserver& observer);

// Why a part of the file names (prefix, delimiter, name or extension text)
// cannot be used, or empty when it can: a part must not lead out of the
// folder, so it holds no "/" and is not "." or "..".
std::string NamePartProblem(const std::string& part);

// The folder files go to: the folder, then the format, then the size.
std::string GetFolderName(const ExportOptions& o);
// The file name of one image by the name rule alone.
std::string ComposeName(const ExportOptions& o, const std::string& baseName, const std::string& overlayName);
// The file name of one image as the preview shows it: made unique in
// `folder` when asked. The run claims its names itself.
std::string Update_Name(const ExportOptions& o, const std::string& baseName, const std::string& overlayName,
                        const std::string& folder);
// "<base>-Duplicate<counter>.<ext>".
std::string DuplicateName(const std::string& fileName, int counter);
// The highest counter of a duplicate's name.
constexpr int kMaxDuplicate = 32767;
// The first DuplicateName that does not exist in `folder`.
std::string UniqueName(const std::string& folder, const std::string& fileName);
// The first surface group of the SVG text with opacity="alpha".
std::string AddAlphaToSVG(const std::string& svg, double alpha);

}  // namespace qds
