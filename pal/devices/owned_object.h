// What every object that the program holds through COM does.
#pragma once

#include <objbase.h>

#include "pal/machine/state.h"

namespace pal {

// An object with one owner.
template <class Interface>
class Owned : public Interface, public ComObject {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { Die("QueryInterface"); }
  ULONG STDMETHODCALLTYPE AddRef() override { Die("AddRef: a second owner of a COM object"); }
  ULONG STDMETHODCALLTYPE Release() override {
    const Call call;
    const ComObject* self = this;
    std::erase_if(call->comObjects, [self](const auto& object) { return object.get() == self; });
    return 0;
  }
};

template <class Object>
Object* MakeObject(State& state) {
  auto object = std::make_unique<Object>();
  Object* made = object.get();
  state.comObjects.push_back(std::move(object));
  return made;
}

}  // namespace pal
