#pragma once

// Last-in-first-out stacks of values of one kind, each value in a block of its own. Int and unsigned values
// may be pushed as one and popped as the other.

struct StackCell {
  StackCell* next;  // the cell pushed before, null at the bottom
  void* data;       // owned
};

struct Stack {
  unsigned count;
  StackCell* top;
};

/// A new empty stack. Without memory the run ends with "cannot allocate new stack".
Stack* stack_alloc();

/// Releases the stack with all that is left in it; null is allowed.
void stack_free(Stack* stack);

/// Pushes a block made by malloc or calloc, which the stack owns from now on. Without memory the run ends
/// with "cannot allocate memory for stack cell".
void stack_add(Stack* stack, void* data);

/// Pops a block, which is the caller's from now on; null if the stack is empty.
void* stack_get(Stack* stack);

/// Push a copy (f double, u unsigned, i int, s string) and return the new count. Without memory the run ends
/// with "cannot allocate memory for f-stack data" (or u, i, s).
unsigned stack_fadd(Stack* stack, double value);
unsigned stack_uadd(Stack* stack, unsigned value);
unsigned stack_iadd(Stack* stack, int value);
unsigned stack_sadd(Stack* stack, const char* text);

/// Pop into `value` and return the remaining count; the stack must not be empty.
/// The buffer of stack_sget must hold the string.
unsigned stack_fget(Stack* stack, double* value);
unsigned stack_uget(Stack* stack, unsigned* value);
unsigned stack_iget(Stack* stack, int* value);
unsigned stack_sget(Stack* stack, char* text);
