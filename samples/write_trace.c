/* Writes a trace as a runtime does: write_trace DIRECTORY RUN-ID [THREADS]
 *
 * Each thread runs a process of the runtime, an order service. An order is made, priced and given
 * back; one in a hundred is forgotten, which is the leak. */
#include <kiv_trace.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

enum { orders = 1, prices = 2, first_session = 10 }; /* allocation ids; two name objects */
enum { take = 1, price = 1 };                        /* their functions */
enum { order_line = 0x1000, item_line, price_line, free_line }; /* locations */
enum { first_pid = 100, most_threads = 64, orders_each = 1000 };

static kiv_trace *trace;
static uint32_t running; /* the process that runs, as the trace knows it */
static void *forgotten[most_threads][orders_each];

static void begin(uint32_t pid) {
  kiv_trace_lock(trace);
  if (running == pid) return;
  kiv_trace_schedule(trace, running, pid);
  running = pid;
}

static void end(void) { kiv_trace_unlock(trace); }

/* The allocator. What it takes for a block is its size and a header of 16 bytes. A block is traced
 * when it is there, and its end before it is gone: in between nobody else can have its address. */
static void *allocate(uint32_t pid, uint32_t id, size_t size, uint64_t location) {
  void *block = malloc(size);
  if (block == NULL) abort();
  begin(pid);
  kiv_trace_malloc_wf(trace, id, 0, (uintptr_t)block, 0, size, size + 16, location);
  end();
  return block;
}

static void give_back(uint32_t pid, uint32_t id, void *block) {
  begin(pid);
  kiv_trace_free(trace, id, 0, (uintptr_t)block, free_line);
  end();
  free(block);
}

static void enter(uint32_t pid, uint32_t parent, int32_t parent_function, uint32_t child,
                  int32_t child_function) {
  begin(pid);
  kiv_trace_flow_in(trace, parent, parent_function, child, child_function);
  end();
}

static void leave(uint32_t pid) {
  begin(pid);
  kiv_trace_flow_out(trace);
  end();
}

static void price_order(uint32_t pid) {
  enter(pid, orders, take, prices, price);
  give_back(pid, prices, allocate(pid, prices, 64, price_line));
  leave(pid);
}

static void take_order(uint32_t pid, uint32_t session, int number, void **items) {
  enter(pid, pid, 0, orders, take);
  void *order = allocate(pid, orders, 120, order_line);
  items[number] = malloc(40);
  if (items[number] == NULL) abort();
  begin(pid);
  kiv_trace_malloc_nf(trace, session, 0, (uintptr_t)items[number], 40, 48, item_line);
  end();
  price_order(pid);
  if (number % 100 == 0) {
    forgotten[pid - first_pid][number] = order;
  } else {
    give_back(pid, orders, order);
  }
  leave(pid);
}

/* One process: its session's memory is given back as a whole when it ends. */
static void *serve(void *argument) {
  const uint32_t pid = *(const uint32_t *)argument;
  const uint32_t session = first_session + pid - first_pid;
  void *items[orders_each];
  char reserve_type[64];

  begin(0);
  kiv_trace_process_start(trace, pid, 0, "server");
  kiv_trace_process_special_load(trace, pid, 0, "main");
  kiv_trace_object_link(trace, pid, orders);
  kiv_trace_object_link(trace, pid, prices);
  snprintf(reserve_type, sizeof reserve_type, "proc:%u:session", (unsigned)pid);
  kiv_trace_reserve_id(trace, session, 0, 0, 1, reserve_type);
  end();

  for (int number = 0; number < orders_each; number++) {
    begin(pid);
    kiv_trace_timestamp_now(trace);
    end();
    take_order(pid, session, number, items);
  }

  begin(pid);
  kiv_trace_free_id(trace, session, 0, 0, UINT64_C(48) * orders_each);
  kiv_trace_process_end(trace, pid);
  end();
  for (int number = 0; number < orders_each; number++) free(items[number]);
  return NULL;
}

static void announce(void) {
  kiv_trace_hashloc(trace, order_line, "orders.c:31");
  kiv_trace_hashloc(trace, item_line, "orders.c:44");
  kiv_trace_hashloc(trace, price_line, "prices.c:12");
  kiv_trace_hashloc(trace, free_line, "heap.c:7");
  kiv_trace_reserve_id(trace, orders, 0, 0, 1, "oic:orders");
  kiv_trace_object_load(trace, orders);
  kiv_trace_object_function_load(trace, orders, take, "take");
  kiv_trace_reserve_id(trace, prices, 0, 0, 1, "oic:prices");
  kiv_trace_object_load(trace, prices);
  kiv_trace_object_function_load(trace, prices, price, "price");
}

int main(int argc, char **argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: write_trace DIRECTORY RUN-ID [THREADS]\n");
    return 1;
  }
  const int wanted = argc > 3 ? atoi(argv[3]) : 2;
  const int threads = wanted < 1 ? 1 : wanted > most_threads ? most_threads : wanted;

  kiv_trace_options options;
  kiv_trace_options_init(&options);
  options.directory = argv[1];
  options.run_id = argv[2];
  options.environment = "example";
  trace = kiv_trace_open(&options);
  if (trace == NULL) {
    fprintf(stderr, "write_trace: %s\n", kiv_trace_error());
    return 1;
  }
  printf("%s\n", kiv_trace_header_path(trace));

  announce();
  pthread_t thread[most_threads];
  uint32_t pid[most_threads];
  for (int i = 0; i < threads; i++) {
    pid[i] = (uint32_t)(first_pid + i);
    if (pthread_create(&thread[i], NULL, serve, &pid[i]) != 0) abort();
  }
  for (int i = 0; i < threads; i++) pthread_join(thread[i], NULL);

  /* What the system refused meanwhile, such as a full disk, is told here too. */
  if (kiv_trace_close(trace) != 0) {
    fprintf(stderr, "write_trace: %s\n", kiv_trace_error());
    return 1;
  }
  return 0;
}
