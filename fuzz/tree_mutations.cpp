// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/tree_mutations.h"

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/any_values.h"

namespace kuv::fuzz {
namespace {

using Json::Value;

void collect(Value& node, std::vector<Value*>& nodes) {
  nodes.push_back(&node);
  for (Value& child : node) {
    collect(child, nodes);
  }
}

bool has_children(const Value& node) {
  return (node.isObject() || node.isArray()) && !node.empty();
}

template <class Condition>
Value& any_node_that(Value& document, Random& random, Condition condition) {
  std::vector<Value*> nodes;
  collect(document, nodes);
  nodes.erase(std::remove_if(nodes.begin(), nodes.end(),
                             [&](const Value* node) { return !condition(*node); }),
              nodes.end());
  return nodes.empty() ? document : *random.pick(nodes);
}

/// Any node, each as likely as the others.
Value& any_node(Value& document, Random& random) {
  return any_node_that(document, random, [](const Value&) { return true; });
}

/// A node on a random way down, so that what stands near the root is found more often.
Value& node_on_the_way_down(Value& document, Random& random) {
  Value* node = &document;
  while (has_children(*node) && !random.chance(15)) {
    node = &any_child(*node, random);
  }
  return *node;
}

void insert_copy(Value& array, Random& random) {
  const Value copy = array[static_cast<Json::ArrayIndex>(random.below(array.size()))];
  array.insert(static_cast<Json::ArrayIndex>(random.below(array.size() + 1)), copy);
}

void drop_element(Value& array, Random& random) {
  Value dropped;
  array.removeIndex(static_cast<Json::ArrayIndex>(random.below(array.size())), &dropped);
}

void mutate_array(Value& array, Random& random) {
  if (array.empty()) {
    array.append(any_value(random));
    return;
  }
  switch (random.below(8)) {
    case 0:
    case 1:
      array.clear();
      break;
    case 2:
    case 3:
    case 4:
      insert_copy(array, random);
      break;
    case 5:
      drop_element(array, random);
      break;
    case 6:
      swap_elements(array, random);
      break;
    default:
      array.append(any_value(random));
  }
}

void mutate_object(Value& object, Random& random) {
  if (object.empty() || random.chance(20)) {
    object[random.pick(words())] = any_value(random);
    return;
  }
  const std::string key = random.pick(object.getMemberNames());
  const Value value = object[key];
  switch (random.below(4)) {
    case 0:
      object.removeMember(key);
      break;
    case 1:
      object.removeMember(key);
      object[key + "s"] = value;
      break;
    case 2:
      object[random.pick(object.getMemberNames())] = value;
      break;
    default:
      object[key] = any_value(random);
  }
}

void mutate_text(Value& text, Random& random) {
  std::string changed = text.asString();
  switch (random.below(5)) {
    case 0:
      std::transform(changed.begin(), changed.end(), changed.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
      });
      break;
    case 1:
      changed += "x";
      break;
    case 2:
    case 3:
      changed = "";
      break;
    default:
      changed = random.pick(words());
  }
  text = changed;
}

/// A number in another unit, or one off; the sign may go wrong, which is as well.
void mutate_small_number(Value& number, Random& random) {
  switch (random.below(4)) {
    case 0:
      number = number.asInt64() * 1000;
      break;
    case 1:
      number = number.asInt64() / 1000;
      break;
    case 2:
      number = number.asInt64() + 1;
      break;
    default:
      number = number.asInt64() - 1;
  }
}

void mutate_number(Value& number, Random& random) {
  if (number.isInt() && random.chance(50)) {
    mutate_small_number(number, random);
  } else {
    number = random.pick(boundary_numbers());
  }
}

/// Another value of the same kind.
void vary(Value& node, Random& random) {
  if (node.isArray()) {
    mutate_array(node, random);
  } else if (node.isObject()) {
    mutate_object(node, random);
  } else if (node.isString()) {
    mutate_text(node, random);
  } else if (node.isBool()) {
    node = !node.asBool();
  } else if (node.isNumeric()) {
    mutate_number(node, random);
  } else {
    node = any_value(random);
  }
}

/// Leaves are many and what holds others is few; messages are about both.
Value& some_node(Value& document, Random& random) {
  switch (random.below(4)) {
    case 0:
      return node_on_the_way_down(document, random);
    case 1:
      return any_node(document, random);
    case 2:
      return any_node_that(document, random, [](const Value& node) { return !has_children(node); });
    default:
      return any_node_that(document, random, has_children);
  }
}

}  // namespace

void mutate_tree(Value& document, Random& random) {
  Value& node = some_node(document, random);
  switch (random.below(8)) {
    case 0:
    case 1:
      node = any_value(random);
      break;
    case 2: {
      const Value copy = any_node(document, random);
      node = copy;
      break;
    }
    default:
      vary(node, random);
  }
}

}  // namespace kuv::fuzz
