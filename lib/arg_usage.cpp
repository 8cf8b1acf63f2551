#include <cstdio>
#include <cstdlib>

#include "arg.hpp"

// The usage line is printed piece by piece; the `given` marks tell what has been printed.

namespace {

void print_switches(ArgTable* table) {
  bool is_first = true;
  for (ArgDefinition& definition : arg_definitions(table)) {
    definition.given = definition.is_switch;
    if (definition.is_switch != 0) {
      std::printf("%s%s", is_first ? " [-" : "", definition.letter);
      is_first = false;
    }
  }
  std::printf("%s", is_first ? "" : "]");
}

void print_one(ArgDefinition* definition) {
  if (arg_is_item(*definition)) {
    std::printf("<%s>", definition->description);
  } else {
    std::printf(definition->optional != 0 ? "[-%c <%s>]" : "-%c <%s>", definition->letter[0],
                definition->description);
  }
  definition->given = 1;
}

// The members of the definition's group in table order, or it alone if it has none.
template <class Action>
void for_each_bound(ArgTable* table, const ArgDefinition& definition, Action action) {
  for (ArgDefinition& member : arg_definitions(table)) {
    if (&member == &definition || (definition.group != 0 && member.group == definition.group)) {
      action(&member);
    }
  }
}

void print_group(ArgTable* table, const ArgDefinition& definition) {
  const char* separator = "{";
  for_each_bound(table, definition, [&](ArgDefinition* member) {
    if (member->given == 0) {  // the group's switches have been printed with all others
      std::printf("%s", separator);
      print_one(member);
      separator = " ";
    }
  });
  std::printf("}");
}

// The definition with all that is bound to it, and behind that what excludes it.
void print_connected(ArgTable* table, ArgDefinition* definition) {
  const bool has_group = definition->group != 0;
  bool has_partner = false;
  for_each_bound(table, *definition,
                 [&](const ArgDefinition* member) { has_partner = has_partner || member->exclusive != 0; });
  const bool is_enclosed = has_group && has_partner;

  std::printf("%s", is_enclosed ? " {" : " ");
  if (has_group) {
    print_group(table, *definition);
  } else {
    print_one(definition);
  }
  for_each_bound(table, *definition, [&](const ArgDefinition* member) {
    ArgDefinition* partner = &table->definitions[member->exclusive];
    if (member->exclusive != 0 && partner->given == 0) {
      std::printf(" |");
      print_connected(table, partner);
    }
  });
  std::printf("%s", is_enclosed ? "}" : "");
}

template <class Selected>
void print_unprinted(ArgTable* table, Selected selected) {
  for (ArgDefinition& definition : arg_definitions(table)) {
    if (definition.given == 0 && selected(definition)) {
      print_connected(table, &definition);
    }
  }
}

}  // namespace

void arg_usage(ArgTable* table, const char* program, const char* error, std::int16_t exit_flag) {
  std::printf("usage: %s", program);
  print_switches(table);
  print_unprinted(table, [](const ArgDefinition& d) { return !arg_is_item(d) && d.optional != 0; });
  print_unprinted(table, [](const ArgDefinition& d) { return !arg_is_item(d); });
  print_unprinted(table, arg_is_item);
  std::printf("\n");
  if (error != nullptr) {
    std::printf("error: %s\n", error);
  }
  if (exit_flag != 0) {
    std::exit(1);
  }
}
