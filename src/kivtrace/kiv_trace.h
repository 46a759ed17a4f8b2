/* Writes traces of kiv: the interface for a runtime that traces its memory. */
#ifndef KIV_TRACE_H
#define KIV_TRACE_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A trace that is being written: a header file and data files in the directory of a run.
 *
 * Any thread may call any function at any time; records stand in the trace in the order of their
 * calls. Functions return 0, or -1 for what was refused or failed, and then kiv_trace_error() says
 * why. What the system refuses is final: no later record of that trace is taken. A trace that lacks
 * a record for either reason stays open, as that of a process that died does, so that no report
 * takes it for complete.
 *
 * A child of fork() has no part in its parent's traces: all functions refuse them there. It opens a
 * trace of its own.
 *
 * Memory is taken when a trace is opened or closed and when a data file is full, not for a record.
 * A runtime that traces that very allocator leaves such calls out: within them every function
 * refuses the trace. Signal handlers may call none.
 *
 * Texts end with a NUL and are copied; NULL is the empty text. A record holds 65,535 bytes: a text
 * that is longer than what its numbers leave is cut. */
typedef struct kiv_trace kiv_trace;

enum kiv_trace_byte_order {
  KIV_TRACE_NATIVE_ORDER = 0, /* that of this machine */
  KIV_TRACE_LITTLE_ENDIAN = 1,
  KIV_TRACE_BIG_ENDIAN = 2
};

/* What a trace says of itself, and how it is written. 0 and NULL stand for the default. */
typedef struct kiv_trace_options {
  size_t size; /* of this struct: set by kiv_trace_options_init() */

  const char *run_id;    /* names the run and all tables that are made from it; must be given */
  const char *directory; /* of the run; must be given; made when missing, and what is above it */
  const char *recorded_directory; /* what the header calls it; default: "./" and its last part, for
                                     which kiv is started in the directory above */
  const char *base_name;          /* files are <base name>.<pid>. ...; default: kiv */

  const char *program;     /* default: the name by which this program was called */
  const char *user;        /* default: none */
  const char *environment; /* of the runtime, such as its name and version; default: none */
  const char *account;     /* default: none */
  const char *host;        /* default: this machine's name */
  int32_t pid;             /* default: that of this process */
  int32_t start_nsecs;
  int64_t start_secs; /* when the process started, since the epoch; default: now */

  int32_t byte_order;    /* a kiv_trace_byte_order */
  int32_t address_width; /* bytes of an address, location or symbol: 4 or 8; default: a pointer's */
  int32_t replace;       /* not 0: a trace of the same names is replaced; default: it is an error */

  /* Bytes of bookkeeping of the traced allocator: for a block, for a chunk of its heap, for a group
   * of chunks. Default: 0. */
  int32_t m_entry_size;
  int32_t mem_block_size;
  int32_t m_group_size;

  /* Bytes of a data file, at least 1,024, below 2 GiB; default: 16 MiB. A record that does not fit
   * goes to the next file. */
  uint64_t max_file_size;
  /* Bytes that wait in memory: what is lost when the process dies. Default: 64 KiB; 1 puts every
   * record into its file at once. */
  uint64_t buffer_size;
} kiv_trace_options;

/* Sets every member to its default. */
static inline void kiv_trace_options_init(kiv_trace_options *options) {
  memset(options, 0, sizeof *options);
  options->size = sizeof *options;
}

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

/* Makes the header and the first data file. NULL on failure; then nothing of them stays. */
kiv_trace *kiv_trace_open(const kiv_trace_options *options);

/* Puts everything written so far into the files: from then on the death of the process cannot take
 * it back. (The system's own death can.) */
int kiv_trace_flush(kiv_trace *trace);

/* The traced process ends now, or at that time: writes what is buffered, closes the trace and gives
 * the handle back, whatever is returned. No other thread may use the handle any more. */
int kiv_trace_close(kiv_trace *trace);
int kiv_trace_close_at(kiv_trace *trace, int64_t secs, int32_t nsecs);

/* Gives the handle back as above, but leaves the trace open: for one that lacks what only the
 * caller knows of. */
int kiv_trace_abandon(kiv_trace *trace);

/* Why the last function that failed on this thread did. Empty when none did; valid until the next
 * one fails on this thread. */
const char *kiv_trace_error(void);

/* The path of the header file, valid while the trace is open. */
const char *kiv_trace_header_path(const kiv_trace *trace);

/* Between these two no other thread writes, so that a schedule and the records of that process stay
 * together. They may be nested. Wait for nothing in between. */
int kiv_trace_lock(kiv_trace *trace);
int kiv_trace_unlock(kiv_trace *trace);

/* Records, one function each. The letter is the tag in the data file.
 *
 * Numbers of allocation ids, colours, processes, objects, functions, statements, symbols and
 * locations are the runtime's own. A location stands for a line of source; 0 is none. Sizes are
 * bytes: `size` is what the program asked for, `tot_size` what the allocator spent on it. Records
 * have room for 4,294,967,295 bytes; a larger size is refused, and so is an address, location or
 * symbol that has more than address_width bytes. */

/* T: all that follows happened then. The second one reads the system's clock. */
int kiv_trace_timestamp(kiv_trace *trace, uint32_t secs, uint32_t nsecs);
int kiv_trace_timestamp_now(kiv_trace *trace);

/* C: a text that the user of the program puts into the trace. */
int kiv_trace_marker(kiv_trace *trace, const char *text);

/* H: names a location, such as "orders.c:240"; once, before its first use. */
int kiv_trace_hashloc(kiv_trace *trace, uint64_t location, const char *source_line);

/* P: a process of the runtime starts; it is known by the session name up to the first blank. */
int kiv_trace_process_start(kiv_trace *trace, uint32_t pid, uint32_t parent,
                            const char *session_name);
/* X: it has ended. */
int kiv_trace_process_end(kiv_trace *trace, uint32_t pid);
/* B: names a place of the process itself in place of a function; its number is 0 or negative. 0 is
 * what stands lowest on the process's call stack. */
int kiv_trace_process_special_load(kiv_trace *trace, uint32_t pid, int32_t funnr,
                                   const char *funcname);
/* s: another process runs. What follows belongs to it. */
int kiv_trace_schedule(kiv_trace *trace, uint32_t curr_pid, uint32_t new_pid);

/* L: an object, a unit of code, is loaded. It has the name of the allocation id of its number. */
int kiv_trace_object_load(kiv_trace *trace, uint32_t id_of_obj);
/* l: names a function of an object; numbers start at 1. */
int kiv_trace_object_function_load(kiv_trace *trace, uint32_t id_of_obj, int32_t funnr,
                                   const char *funcname);
/* b: names a Hosk function of an object; these have numbers of their own. */
int kiv_trace_object_global_load(kiv_trace *trace, uint32_t id_of_obj, int32_t funnr,
                                 const char *funcname);
/* p: links an object to a process that will run it. */
int kiv_trace_object_link(kiv_trace *trace, uint32_t pid, uint32_t id_of_obj);

/* I: the process that runs calls a function. The parent is the caller. A place of the process
 * itself is told by its number alone, whatever the object. */
int kiv_trace_flow_in(kiv_trace *trace, uint32_t parent_id, int32_t parent_funnr, uint32_t child_id,
                      int32_t child_funnr);
/* O: the function that was called last returns. */
int kiv_trace_flow_out(kiv_trace *trace);
/* i, o: the process that runs calls the Hosk interpreter, and returns from it. */
int kiv_trace_hosk_flow_in(kiv_trace *trace, uint32_t id_of_obj, uint32_t fun3glnr, int32_t funnr,
                           uint64_t sym, const char *args);
int kiv_trace_hosk_flow_out(kiv_trace *trace, uint32_t id_of_obj, uint32_t fun3glnr, int32_t funnr,
                            const char *args);

/* R: an allocation id comes into being. The start of its text gives it a kind: "proc:<pid>:...",
 * "xml...:<pid>:...", "oic:<object name>", "dlock", "qdb", "make_new_sql_stmt", "dbs_session"; with
 * any other text it is a general one. */
int kiv_trace_reserve_id(kiv_trace *trace, uint32_t id, uint64_t default_size, uint64_t location,
                         uint32_t nr_colors, const char *reserve_type);
/* c: names a colour of the id that was reserved last. */
int kiv_trace_reserve_id_colors(kiv_trace *trace, uint32_t color, const char *colorname);
/* F, Z: an id gives back all of its memory and ends, or lives on. The totals are what the writer
 * holds to be live under it, with-free and no-free, the allocator's rounding included. */
int kiv_trace_free_id(kiv_trace *trace, uint32_t id, uint64_t location, uint64_t tot_size_wf,
                      uint64_t tot_size_nf);
int kiv_trace_reset_id(kiv_trace *trace, uint32_t id, uint64_t location, uint64_t tot_size_wf,
                       uint64_t tot_size_nf);

/* a: allocates memory that the program will free. addr_realloc: the live block that the new one
 * replaces, which is freed by a later record of its own; 0 when there is none. */
int kiv_trace_malloc_wf(kiv_trace *trace, uint32_t id, uint32_t color, uint64_t addr,
                        uint64_t addr_realloc, uint64_t size, uint64_t tot_size, uint64_t location);
/* n: allocates memory that is given back with its id only. */
int kiv_trace_malloc_nf(kiv_trace *trace, uint32_t id, uint32_t color, uint64_t addr, uint64_t size,
                        uint64_t tot_size, uint64_t location);
/* f: frees a block. */
int kiv_trace_free(kiv_trace *trace, uint32_t id, uint32_t color, uint64_t addr, uint64_t location);
/* r: resizes a block in place. addr_free is listed and not used. */
int kiv_trace_free_realloc(kiv_trace *trace, uint32_t id, uint32_t color, uint64_t addr,
                           uint64_t addr_free, uint64_t size, uint64_t tot_size, uint64_t location);

/* S: the heap grew. */
int kiv_trace_sbrk(kiv_trace *trace, uint64_t addr, uint64_t size);
/* G: it grew behind a gap, from its last end to the start of the new part. */
int kiv_trace_sbrk_gap(kiv_trace *trace, uint64_t l_sbrk, uint64_t c_sbrk);
/* M: what the native allocator says of itself. */
int kiv_trace_mallinfo(kiv_trace *trace, uint64_t arena, uint64_t used, uint64_t freed);

/* Q: an SQL operation starts; type 'p' brings a statement, 'b', 'c', 'e', 'f' and 's' use one.
 * q: it ends, and tells the statement's number. */
int kiv_trace_query_in(kiv_trace *trace, uint32_t qid, uint32_t type, const char *query);
int kiv_trace_query_out(kiv_trace *trace, uint32_t qid, uint32_t linked_qid);

/* d: a symbol of the process that runs; its type is 1 local, 2 argument, 3 external, 4 dynamic.
 * y, D, Y: its storage, its dimensions, and the name of its type in the data dictionary. */
int kiv_trace_symbol_new_sym(kiv_trace *trace, uint64_t sym, int32_t symnr, int32_t sym_type);
int kiv_trace_symbol_alloc(kiv_trace *trace, uint64_t sym, uint32_t flags, uint64_t size,
                           const char *name);
int kiv_trace_symbol_dims(kiv_trace *trace, uint64_t sym, uint32_t nrdims, uint32_t dim0,
                          uint32_t dim1, uint32_t dim2, uint32_t dim3);
int kiv_trace_symbol_dd_name(kiv_trace *trace, uint64_t sym, const char *dd_name);

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
