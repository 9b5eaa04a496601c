#pragma once
// A tree of nodes from a data source: each node has a key, a caption,
// values its owner keeps with it, and children shown when it is expanded.
// The owner may draw the rows itself.

#include <functional>
#include <string>
#include <vector>

#include "platform/Value.h"
#include "platform/stock/cwListBase.h"

namespace qds {

struct TreeNode {
  std::string key;
  std::string caption;
  std::vector<Value> values;
  std::vector<TreeNode> children;
  bool expanded = false;
};

class cwTree : public cwListBase {
 public:
  cwTree() : cwListBase("cwTree") {}

  // A new data source; nodes whose keys survive keep their expansion and
  // the selection.
  void setNodes(std::vector<TreeNode> roots);
  const TreeNode* Node(const std::string& key) const;
  void Expand(const std::string& key, bool expanded);
  std::string SelectedKey() const;
  void Select(const std::string& key);  // expands its ancestors to show it

  // Draws a row's content right of the expander when set.
  std::function<void(DrawingContext& ctx, const TreeNode& node, double x, double y, double w, double h,
                     bool selected)>
      OwnerDraw;
  // Also bubbled, with the key: "NodeClick", "NodeDblClick", "NodeExpand".
  std::function<void(const std::string& key)> NodeClick;
  std::function<void(const std::string& key)> NodeDblClick;
  std::function<void(const std::string& key, bool expanded)> NodeExpand;

  bool W_KeyDown(int keyCode, int shift) override;
  // A node by its key, when it is shown.
  WidgetPoint W_ItemPoint(const std::string& key) override;

 protected:
  bool ContentMouseDown(int button, int shift, double x, double y) override;
  void PaintRow(DrawingContext& ctx, int index, double y, double w, bool selected) override;
  void Activated(int index) override;
  void Selected() override;

 private:
  TreeNode* Find(const std::string& key);
  void Rebuild(const std::string& selectKey);
  void Toggle(int index);
  static constexpr double kIndent = 14;

  std::vector<TreeNode> roots_;
  std::vector<TreeNode*> shown_;  // the node of each row
};

}  // namespace qds
