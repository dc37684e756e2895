// What the tables of the language's own functions share. Each topic has a file with its table: a declaration,
// as a library would register it, and the function that it calls.
#pragma once

#include <cstddef>
#include <string_view>

#include "runtime/exception.h"
#include "runtime/host_record.h"
#include "runtime/registry.h"
#include "runtime/text.h"

namespace host {

inline const Text* textOf(REALstring handle) { return reinterpret_cast<const Text*>(handle); }

// What a function hands over.
inline REALstring made(std::string_view bytes, std::uint32_t textEncoding = encoding::utf8) {
  return asPending([&] { return reinterpret_cast<REALstring>(makeText(bytes, textEncoding).detach()); });
}

template <std::size_t count>
void registerFunctions(REALmethodDefinition (&table)[count]) {
  for (REALmethodDefinition& function : table) registry().addFunction(function, false);
}

void registerTextWords();
void registerSearchWords();
void registerNumberWords();
void registerMathWords();
void registerSystemWords();
void registerVariantWords();
void registerEncodingWords();

}  // namespace host
