#include "runtime/runtime_error.h"

#include <utility>

namespace qivo::runtime {

RuntimeError::RuntimeError(long number, QString description)
    : number_(number),
      description_(std::move(description)),
      what_(QString::number(number_).append(' ').append(description_).toUtf8()) {}

}  // namespace qivo::runtime
