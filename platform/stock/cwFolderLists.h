#pragma once
// Lists of real folders and files: a scrolling list with one row selected,
// the folder list showing the way down to its folder and the folders in
// it, the file list the files of a folder that match a pattern.

#include <functional>
#include <string>
#include <vector>

#include "platform/ui/Widget.h"

namespace qds {

class cwListBase : public Widget {
 public:
  explicit cwListBase(std::string typeName);
  int ListCount() const { return static_cast<int>(rows_.size()); }
  const std::string& List(int index) const { return rows_.at(index).text; }
  int ListIndex() const { return index_; }
  void setListIndex(int index);  // -1 for none
  int TopIndex() const { return top_; }
  double RowHeight = 20;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_DblClick(int button, int shift, double x, double y) override;
  bool W_MouseWheel(int delta, int shift, double x, double y) override;
  void W_KeyDown(int& keyCode, int shift) override;

 protected:
  struct Row {
    std::string text;
    int indent = 0;
    bool folder = false;
  };
  void SetRows(std::vector<Row> rows, int selected);
  // A double click or Return on a row.
  virtual void Activated(int index) { (void)index; }
  virtual void Selected() {}

 private:
  int RowsShown() const;
  void ScrollTo(int index);
  std::vector<Row> rows_;
  int index_ = -1;
  int top_ = 0;
};

class cwDirList : public cwListBase {
 public:
  cwDirList();
  const std::string& Path() const { return path_; }
  // False, with the list as it was, when the folder cannot be read.
  bool setPath(const std::string& path);
  void Rescan();
  // The folder changed; also bubbled as "Change".
  std::function<void()> Change;

 protected:
  void Activated(int index) override;

 private:
  std::string path_;
  std::vector<std::string> targets_;  // the folder each row stands for
};

class cwFileList : public cwListBase {
 public:
  cwFileList() : cwListBase("cwFileList") {}
  const std::string& Path() const { return path_; }
  bool setPath(const std::string& path);
  // Wildcards separated by ';', matched without regard to case: "*.svg;*.png".
  std::string Pattern = "*";
  void Rescan();
  // The selected file's name, or empty.
  std::string FileName() const { return ListIndex() < 0 ? std::string() : List(ListIndex()); }
  std::function<void()> Click;
  std::function<void()> DblClick;

 protected:
  void Activated(int index) override;
  void Selected() override;

 private:
  std::string path_;
};

// Whether `name` matches a wildcard of '*' and '?', ignoring case.
bool WildcardMatch(std::string_view pattern, std::string_view name);

}  // namespace qds
