// What Qt calls lets no exception out: it would end the program.
#pragma once

#include <QString>

#include <exception>
#include <type_traits>

namespace ui {

// The call's result; when it throws, a default one after failed(reason). Edits are values: after a failed one the text
// is what it was.
template <typename Call, typename Failed>
std::invoke_result_t<Call&> Guarded(Call&& call, Failed&& failed) {
  try {
    return call();
  } catch (const std::exception& failure) {
    failed(QString::fromUtf8(failure.what()));
  }
  return std::invoke_result_t<Call&>();
}

}  // namespace ui
