#include "platform/stock/cwTree.h"

#include <map>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

namespace {

template <class Visit>
bool Walk(std::vector<TreeNode>& nodes, Visit visit) {
  for (TreeNode& node : nodes) {
    if (visit(node) || Walk(node.children, visit)) return true;
  }
  return false;
}

}  // namespace

void cwTree::setNodes(std::vector<TreeNode> roots) {
  std::map<std::string, bool> wasExpanded;
  Walk(roots_, [&](TreeNode& n) { return wasExpanded[n.key] = n.expanded, false; });
  const std::string selected = SelectedKey();
  Walk(roots, [&](TreeNode& n) {
    if (auto it = wasExpanded.find(n.key); it != wasExpanded.end()) n.expanded = it->second;
    return false;
  });
  roots_ = std::move(roots);
  Rebuild(selected);
}

TreeNode* cwTree::Find(const std::string& key) {
  TreeNode* found = nullptr;
  Walk(roots_, [&](TreeNode& n) { return n.key == key && (found = &n); });
  return found;
}

const TreeNode* cwTree::Node(const std::string& key) const {
  return const_cast<cwTree*>(this)->Find(key);
}

std::string cwTree::SelectedKey() const {
  return ListIndex() < 0 ? std::string() : shown_[ListIndex()]->key;
}

void cwTree::Rebuild(const std::string& selectKey) {
  std::vector<Row> rows;
  shown_.clear();
  int selected = -1;
  const auto add = [&](auto& self, std::vector<TreeNode>& nodes, int depth) -> void {
    for (TreeNode& n : nodes) {
      if (n.key == selectKey) selected = static_cast<int>(rows.size());
      rows.push_back({n.caption, depth, !n.children.empty()});
      shown_.push_back(&n);
      if (n.expanded) self(self, n.children, depth + 1);
    }
  };
  add(add, roots_, 0);
  SetRows(std::move(rows), selected);
}

void cwTree::Expand(const std::string& key, bool expanded) {
  TreeNode* node = Find(key);
  if (!node || node->children.empty() || node->expanded == expanded) return;
  node->expanded = expanded;
  // The selection stays where it was, or moves up to the node that hid it.
  std::string keep = SelectedKey();
  if (!expanded && !keep.empty() && keep != key) {
    bool inside = false;
    Walk(node->children, [&](TreeNode& n) { return inside = n.key == keep; });
    if (inside) keep = key;
  }
  Rebuild(keep);
  RaiseEvent(NodeExpand, "NodeExpand", key, expanded);
}

void cwTree::Select(const std::string& key) {
  // Open the way down to it, from the top, telling the owner of each.
  std::vector<std::string> way;
  const auto find = [&](auto& self, std::vector<TreeNode>& nodes) -> bool {
    for (TreeNode& n : nodes) {
      if (n.key == key) return true;
      way.push_back(n.key);
      if (self(self, n.children)) return true;
      way.pop_back();
    }
    return false;
  };
  if (!find(find, roots_)) return;
  for (const std::string& k : way) Expand(k, true);
  for (size_t i = 0; i < shown_.size(); ++i) {
    if (shown_[i]->key == key) setListIndex(static_cast<int>(i));
  }
}

void cwTree::Toggle(int index) {
  const std::string key = shown_.at(index)->key;
  Expand(key, !shown_[index]->expanded);
}

void cwTree::PaintRow(DrawingContext& ctx, int index, double y, double w, bool selected) {
  const TreeNode& node = *shown_[index];
  const double x = 4 + RowAt(index).indent * kIndent;
  if (!node.children.empty()) {
    // The expander: pointing right when closed, down when open.
    const double cx = x + kIndent / 2, cy = y + RowHeight / 2;
    if (node.expanded) {
      DrawPart(ctx, ThemePart::Arrow, 0, cx - 4, cy - 2, 8, 5, ArrowDirection::Down);
    } else {
      DrawPart(ctx, ThemePart::Arrow, 0, cx - 2, cy - 4, 5, 8, ArrowDirection::Right);
    }
  }
  const double textLeft = x + kIndent + 2;
  if (OwnerDraw) {
    OwnerDraw(ctx, node, textLeft, y, w - textLeft, RowHeight, selected);
    return;
  }
  ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  ctx.DrawText(textLeft, y, w - textLeft - 4, RowHeight, node.caption, true, TextAlign::Left,
               TextAlign::Middle);
}

bool cwTree::ContentMouseDown(int button, int shift, double x, double y) {
  const int row = RowAtY(y);
  if (button == Button::Left && row >= 0) {
    const double expanderLeft = 4 + RowAt(row).indent * kIndent;
    if (x >= expanderLeft && x < expanderLeft + kIndent && !shown_[row]->children.empty()) {
      SetFocus();
      Toggle(row);
      return true;
    }
  }
  return cwListBase::ContentMouseDown(button, shift, x, y);
}

bool cwTree::W_KeyDown(int keyCode, int shift) {
  const int index = ListIndex();
  if (index >= 0 && (keyCode == Key::Left || keyCode == Key::Right)) {
    TreeNode& node = *shown_[index];
    const bool open = keyCode == Key::Right;
    if (!node.children.empty() && node.expanded != open) {
      Expand(node.key, open);
    } else if (!open) {
      // Left on a closed or leaf node goes to its parent.
      for (int i = index - 1; i >= 0; --i) {
        if (RowAt(i).indent < RowAt(index).indent) {
          UserChose(i);
          break;
        }
      }
    }
    return true;
  }
  return cwListBase::W_KeyDown(keyCode, shift);
}

void cwTree::Activated(int index) {
  const std::string key = shown_.at(index)->key;
  RaiseEvent(NodeDblClick, "NodeDblClick", key);
  Toggle(index);
}

void cwTree::Selected() {
  const std::string key = SelectedKey();
  if (key.empty()) return;
  RaiseEvent(NodeClick, "NodeClick", key);
}

WidgetPoint cwTree::W_ItemPoint(const std::string& key) {
  for (std::size_t i = 0; i < shown_.size(); ++i) {
    if (shown_[i]->key == key) return W_RowPoint(static_cast<int>(i));
  }
  return {};
}

QDS_JOIN_WIDGET_REGISTRY(cwTree);

}  // namespace qds
