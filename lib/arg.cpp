#include "arg.hpp"

#include <cstdio>

#include "message.hpp"

namespace {

// Appends a zeroed definition; `text` is what it cannot be without.
ArgDefinition* add_definition(ArgTable* table, const char* text, const char* failure) {
  if (table->count >= arg_max_count) {
    msg_fatal("maximum number of argument definition exceeded");
  }
  if (*text == '\0') {
    msg_fatal(failure);
  }
  ArgDefinition* definition = &table->definitions[table->count++];
  *definition = {};
  return definition;
}

// Completes what switches do not have: a value.
unsigned bind_value(ArgTable* table, ArgDefinition* definition, const char* description, std::int16_t type,
                    std::int16_t optional, void* target) {
  std::snprintf(definition->description, arg_text_size, "%s", description);
  definition->type = type;
  definition->optional = optional;
  definition->target = target;
  return table->count - 1;
}

void check_index(const ArgTable* table, unsigned index) {
  if (index >= table->count) {
    msg_fatal("argument definition does not exist");
  }
}

bool group_is_used(ArgTable* table, unsigned group) {
  for (const ArgDefinition& definition : arg_definitions(table)) {
    if (definition.group == group) {
      return true;
    }
  }
  return false;
}

}  // namespace

unsigned arg_add_switch(ArgTable* table, const char* name, std::int16_t stop, std::int16_t* target) {
  ArgDefinition* definition = add_definition(table, name, "name of switch is not defined");
  definition->letter[0] = name[0];
  definition->is_switch = 1;
  definition->stop_or_item = stop;
  return bind_value(table, definition, "", arg_short, 1, target);
}

unsigned arg_add_option(ArgTable* table, const char* name, const char* description, std::int16_t type,
                        std::int16_t optional, void* target) {
  ArgDefinition* definition = add_definition(table, name, "name of argument option is not defined");
  definition->letter[0] = name[0];
  return bind_value(table, definition, description, type, optional, target);
}

unsigned arg_add_item(ArgTable* table, const char* description, std::int16_t type, std::int16_t optional,
                      void* target) {
  ArgDefinition* definition =
      add_definition(table, description, "description of argument item is not defined");
  definition->stop_or_item = 1;
  return bind_value(table, definition, description, type, optional, target);
}

void arg_add_help(ArgTable* table, void (*help)()) {
  table->help = 1;
  table->help_fce = help;
}

void arg_bind(ArgTable* table, unsigned a, unsigned b) {
  check_index(table, a);
  check_index(table, b);
  unsigned& a_group = table->definitions[a].group;
  unsigned& b_group = table->definitions[b].group;
  if (a_group == 0 && b_group == 0) {
    unsigned group = 1;
    while (group_is_used(table, group)) {
      ++group;
    }
    a_group = b_group = group;
  } else if (a_group == 0) {
    a_group = b_group;
  } else if (b_group == 0) {
    b_group = a_group;
  } else {
    const unsigned old_group = a_group;
    for (ArgDefinition& definition : arg_definitions(table)) {
      if (definition.group == old_group) {
        definition.group = b_group;
      }
    }
  }
  arg_check_compatibility(table);
}

void arg_exclude(ArgTable* table, unsigned a, unsigned b) {
  check_index(table, a);
  check_index(table, b);
  table->definitions[a].exclusive = b;
  table->definitions[b].exclusive = a;
}

void arg_check_compatibility(const ArgTable* table) {
  for (unsigned i = 0; i < table->count; ++i) {
    const ArgDefinition& earlier = table->definitions[i];
    for (unsigned j = i + 1; j < table->count; ++j) {
      const ArgDefinition& later = table->definitions[j];
      if (earlier.group == 0 || later.group != earlier.group) {
        continue;
      }
      if (earlier.exclusive != 0 && table->definitions[earlier.exclusive].group == earlier.group) {
        msg_fatal("both binding and exclusion of the same options required");
      }
      if (earlier.optional != later.optional) {
        msg_fatal("error: binding optional and mandatory option required");
      }
    }
  }
}

unsigned arg_get_id(const ArgTable* table, char letter) {
  unsigned index = 0;
  while (index < table->count &&
         (arg_is_item(table->definitions[index]) || table->definitions[index].letter[0] != letter)) {
    ++index;
  }
  return index;
}

unsigned arg_get_sid(const ArgTable* table) {
  unsigned index = 0;
  while (index < table->count &&
         (!arg_is_item(table->definitions[index]) || table->definitions[index].given != 0)) {
    ++index;
  }
  return index;
}
