// kxcommonr/testing/DisplayCapture.h
//
// Test helper: redirects the diagnostic display to a string stream for the
// lifetime of the object and restores the previous stream afterwards.
//
//   kxtesting::DisplayCapture capture;
//   bits.Display();
//   EXPECT_EQ(capture.Text(), "\nKXBitSet display start\n...");
#ifndef KXCOMMONR_TESTING_DISPLAYCAPTURE_H
#define KXCOMMONR_TESTING_DISPLAYCAPTURE_H

#include <ostream>
#include <sstream>
#include <string>

#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace kxtesting {

class DisplayCapture {
 public:
  DisplayCapture() : previous_(KXComponentDisplay::GetOutStream()) {
    KXComponentDisplay::SetOutStream(stream_);
  }
  ~DisplayCapture() { KXComponentDisplay::SetOutStream(*previous_); }
  DisplayCapture(const DisplayCapture&) = delete;
  DisplayCapture& operator=(const DisplayCapture&) = delete;

  // Everything printed so far.
  std::string Text() const { return stream_.str(); }
  // Forgets what was printed so far.
  void Reset() { stream_.str(std::string()); }

 private:
  std::ostream* previous_;
  std::ostringstream stream_;
};

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_DISPLAYCAPTURE_H
