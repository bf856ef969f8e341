// COM for the calling thread for the span of one object: initialised on construction,
// uninitialised on destruction when the initialisation counted.
#pragma once

namespace tc {

class ComApartment {
 public:
  ComApartment();
  ~ComApartment();
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  bool balanced_ = false;  // false when the thread already runs another apartment model
};

}  // namespace tc
