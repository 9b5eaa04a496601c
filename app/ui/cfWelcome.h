#pragma once
// The small window that greets a first start while the library fills: the
// logo, a welcome, and the progress of the import.

#include "platform/ui/Form.h"

namespace qds {

class cwProgressBar;
class cwLabel;

class cfWelcome : public cfForm {
 public:
  cfWelcome();
  // Batches copied so far of all there are.
  void ShowProgress(int done, int total);
  cwProgressBar* Progress = nullptr;
  cwLabel* lblWelcome = nullptr;
  cwLabel* lblImport = nullptr;
};

}  // namespace qds
