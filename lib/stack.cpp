#include "stack.hpp"

#include <cstring>

#include "allocate.hpp"

namespace {

template <class Value>
unsigned push(Stack* stack, Value value, const char* failure) {
  auto* copy = allocate<Value>(1, failure);
  *copy = value;
  stack_add(stack, copy);
  return stack->count;
}

template <class Value>
unsigned pop(Stack* stack, Value* value) {
  void* data = stack_get(stack);
  std::memcpy(value, data, sizeof *value);  // may have been pushed as the other kind of integer
  std::free(data);
  return stack->count;
}

}  // namespace

Stack* stack_alloc() { return allocate<Stack>(1, "cannot allocate new stack"); }

void stack_free(Stack* stack) {
  while (stack != nullptr && stack->count > 0) {
    std::free(stack_get(stack));
  }
  std::free(stack);
}

void stack_add(Stack* stack, void* data) {
  auto* cell = allocate<StackCell>(1, "cannot allocate memory for stack cell");
  cell->next = stack->top;
  cell->data = data;
  stack->top = cell;
  ++stack->count;
}

void* stack_get(Stack* stack) {
  if (stack->count == 0) {
    return nullptr;
  }
  StackCell* cell = stack->top;
  void* data = cell->data;
  stack->top = cell->next;
  --stack->count;
  std::free(cell);
  return data;
}

unsigned stack_fadd(Stack* stack, double value) {
  return push(stack, value, "cannot allocate memory for f-stack data");
}
unsigned stack_uadd(Stack* stack, unsigned value) {
  return push(stack, value, "cannot allocate memory for u-stack data");
}
unsigned stack_iadd(Stack* stack, int value) {
  return push(stack, value, "cannot allocate memory for i-stack data");
}

unsigned stack_sadd(Stack* stack, const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  char* copy = allocate<char>(size, "cannot allocate memory for s-stack data");
  std::memcpy(copy, text, size);
  stack_add(stack, copy);
  return stack->count;
}

unsigned stack_fget(Stack* stack, double* value) { return pop(stack, value); }
unsigned stack_uget(Stack* stack, unsigned* value) { return pop(stack, value); }
unsigned stack_iget(Stack* stack, int* value) { return pop(stack, value); }

unsigned stack_sget(Stack* stack, char* text) {
  auto* copy = static_cast<char*>(stack_get(stack));
  std::memcpy(text, copy, std::strlen(copy) + 1);
  std::free(copy);
  return stack->count;
}
