// Literals.
#include "language/node.h"

#include "runtime/text.h"

namespace host {

Expr integerLiteral(std::uint64_t value, Type type) {
  Expr node = integerNode(type, [value](Frame&) { return value; });
  node->isLiteral = true;
  node->literal = static_cast<std::int64_t>(value);
  return node;
}

Expr realLiteral(double value) {
  Expr node = realNode([value](Frame&) { return value; });
  node->isLiteral = true;
  return node;
}

Expr textLiteral(const std::string& value) {
  Expr node = referenceNode({Kind::String}, [made = Ref<Heap>(makeText(value))](Frame&) { return made; });
  node->isLiteral = true;
  return node;
}

}  // namespace host
