#include "shell/history.h"

#include <cstring>

namespace monitor {
namespace {

struct Node {
  Node* next;  ///< The next older line.
  Node* prev;  ///< The next newer line.
  char* text;
};

char g_texts[kHistoryEntries][kHistoryTextSize];
Node g_nodes[kHistoryEntries];

Node* g_head;    ///< The newest line.
Node* g_tail;    ///< The oldest line.
Node* g_cursor;  ///< The line that Up shows next.
Node* g_free;

Node* TakeNode() {
  if (g_free != nullptr) {
    Node* const node = g_free;
    g_free = node->next;
    return node;
  }
  Node* const oldest = g_tail;
  g_tail = oldest->prev;
  g_tail->next = nullptr;
  return oldest;
}

int Recall(const Node* node, char* buffer) {
  const std::size_t length = std::strlen(node->text);
  std::memcpy(buffer, node->text, length);
  return static_cast<int>(length);
}

}  // namespace

void HistoryInit() {
  g_head = g_tail = g_cursor = g_free = nullptr;
  for (int i = kHistoryEntries - 1; i >= 0; --i) {
    g_nodes[i] = {.next = g_free, .prev = nullptr, .text = g_texts[i]};
    g_free = &g_nodes[i];
  }
}

void HistoryAdd(const char* line, int length) {
  if (length == 0) return;
  Node* const node = TakeNode();
  node->prev = nullptr;
  node->next = g_head;
  (g_head != nullptr ? g_head->prev : g_tail) = node;
  g_head = node;
  g_cursor = node;
  std::memcpy(node->text, line, static_cast<std::size_t>(length) + 1);
}

int HistoryOlder(char* buffer) {
  if (g_tail == nullptr) return 0;
  if (g_cursor == nullptr) return Recall(g_tail, buffer);
  const int length = Recall(g_cursor, buffer);
  g_cursor = g_cursor->next;
  return length;
}

int HistoryNewer(char* buffer) {
  if (g_tail == nullptr) return 0;
  // The cursor is one line beyond the shown one, so the line to show is two lines newer;
  // past the oldest line the shown one is the tail itself.
  Node* const shown = g_cursor != nullptr ? g_cursor->prev : g_tail;
  if (shown == nullptr || shown->prev == nullptr) {
    g_cursor = g_head;
    return 0;
  }
  g_cursor = shown;
  return Recall(shown->prev, buffer);
}

}  // namespace monitor
