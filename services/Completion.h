// What a document window asks of the completion list that lies over its editor.
#pragma once

namespace services {

class Completion {
 public:
  virtual ~Completion() = default;
  // Takes the words as they are now; closes when auto-complete is off.
  virtual void Fill() = 0;
  // Whether auto-complete is on is the caller's question.
  virtual void ShowCompletionPopup() = 0;
};

}  // namespace services
