/* The program whose recording is samples/recordings: a bakery that forgets what is written on its
   orders, and keeps every loaf until the evening. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct order {
  char *note;
  int loaves;
};

static char *copy_of(const char *text) {
  char *copy = malloc(strlen(text) + 1);
  return copy ? strcpy(copy, text) : NULL;
}

static struct order *take_order(int number) {
  char text[64];
  struct order *taken = malloc(sizeof *taken);
  if (!taken) exit(1);
  snprintf(text, sizeof text, "order %d: sliced, please", number);
  taken->note = number % 3 == 0 ? copy_of(text) : NULL;
  taken->loaves = number % 5 + 1;
  return taken;
}

static void *bake(size_t grams) {
  char *dough = malloc(2 * grams); /* for a moment only */
  char *loaf = malloc(grams);
  if (!dough || !loaf) exit(1);
  memset(dough, 'd', 2 * grams);
  memcpy(loaf, dough, grams);
  free(dough);
  return loaf;
}

int main(void) {
  enum { orders = 120, most_loaves = 5 * orders };
  static void *shelf[most_loaves];
  int baked = 0;
  for (int number = 0; number < orders; ++number) {
    struct order *taken = take_order(number);
    for (int i = 0; i < taken->loaves; ++i) shelf[baked++] = bake(500 + 250 * (size_t)(i % 3));
    free(taken); /* but not its note */
  }
  while (baked > 0) free(shelf[--baked]);
  return 0;
}
