#pragma once

#include <stddef.h>
#include <stdint.h>

#include "pxrom/export.h"

/* The library for hosts in other languages: plain C (C99), opaque handles, no exception.
 *
 *   pxrom_model* model = NULL;
 *   char message[PXROM_MESSAGE_SIZE];
 *   if (pxrom_model_read(text, length, &model, message, sizeof message) != PXROM_OK) puts(message);
 *
 * Statuses: every operation that can fail returns a pxrom_status; its results are written on
 * PXROM_OK only, unless its comment says otherwise.
 *
 * Messages: the last two arguments of such an operation are a buffer of the caller's and its size.
 * It gets one sentence on what is wrong and what would be right, cut to fit and always ended by a
 * 0, or nothing ("") on PXROM_OK. Null or a size of 0 will do for no message. Nothing is kept
 * inside the library, so that threads can't meet in it.
 *
 * Null: a null handle, a null result and a null that stands for data is refused with
 * PXROM_NULL_ARGUMENT. A comment says where null has a meaning.
 *
 * Numbers: what names a list or a mode is passed as a plain integer, so that any other number can
 * be refused; the enumerations name those that have a meaning.
 *
 * Ownership: what `_read` and `_prepare` hand out belongs to the caller, who frees it with `_free`;
 * freeing null does nothing. A prepared combination outlives its model. Strings and arrays that are
 * handed out belong to their handle. Texts are bytes as the database has them, UTF-8 as a rule.
 *
 * Threads: a handle never changes, so that any number of threads may use one until it is freed.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* Long enough for every message but those that quote very long names. */
#define PXROM_MESSAGE_SIZE 512

typedef enum pxrom_status {
  PXROM_OK = 0,
  PXROM_REFUSED = 1,       /* the database or what was asked of it; the message says why */
  PXROM_NULL_ARGUMENT = 2, /* the message says which */
  PXROM_NO_MEMORY = 3,
  PXROM_FAILED = 4 /* an exception out of the caller's own callback */
} pxrom_status;

/* The version of the library that runs, such as "0.1.0". */
PXROM_API const char* pxrom_version(void);

/* ---- A model ---- */

typedef struct pxrom_model pxrom_model;

/* Reads the `length` bytes of a database. PXROM_REFUSED for a text that can't be read or has no
 * combination. As all reading in this library it is silent about damage that has a meaning of its
 * own; pxrom_check tells. */
PXROM_API pxrom_status pxrom_model_read(const char* text, size_t length, pxrom_model** model,
                                        char* message, size_t message_size);
PXROM_API void pxrom_model_free(pxrom_model* model);

typedef enum pxrom_list {
  PXROM_ALL_PARAMETERS = 0,  /* by rank, also those that are disabled or derived */
  PXROM_INPUTS = 1,          /* enabled continuous inputs by rank: the columns of points */
  PXROM_DISCRETE_INPUTS = 2, /* enabled discrete inputs by rank: the values of a combination */
  PXROM_OUTPUTS = 3          /* predicted outputs by the bytes of their ID: columns of results */
} pxrom_list;

/* The numbers of `causality` and `type` are those of a database. */
typedef struct pxrom_parameter {
  const char* id;
  const char* unit;    /* "" without */
  const char* caption; /* "" without */
  int32_t causality;   /* 0 input, 1 output */
  int32_t type;        /* 0, 1 continuous; 2 discrete; 3 derived */
  int32_t enabled;     /* 0 or 1 */
  int32_t rank;
  int32_t has_bounds; /* 1 when the lower bound is below the upper one */
  double lower_bound; /* bounds are shown and never enforced */
  double upper_bound;
  const int32_t* values; /* of an enabled discrete input: those that the combinations have, */
  size_t value_count;    /* ascending */
} pxrom_parameter;

PXROM_API pxrom_status pxrom_model_count(const pxrom_model* model, int32_t list, size_t* count,
                                         char* message, size_t message_size);
PXROM_API pxrom_status pxrom_model_parameter(const pxrom_model* model, int32_t list, size_t index,
                                             pxrom_parameter* parameter, char* message,
                                             size_t message_size);

/* Combinations in ascending order of their values; a model without discrete inputs has one. */
PXROM_API pxrom_status pxrom_model_combination_count(const pxrom_model* model, size_t* count,
                                                     char* message, size_t message_size);
/* `values` becomes as many values as there are discrete inputs, in their order. It is null for a
 * model without. */
PXROM_API pxrom_status pxrom_model_combination(const pxrom_model* model, size_t index,
                                               const int32_t** values, char* message,
                                               size_t message_size);

/* ---- A prepared combination ---- */

typedef struct pxrom_prepared pxrom_prepared;

/* Prepares one combination to answer many points. `names` and `values` hold `count` elements each
 * and name every discrete input once, in any order; with null `names` the values stand in the order
 * of PXROM_DISCRETE_INPUTS. Both may be null where `count` is 0. */
PXROM_API pxrom_status pxrom_model_prepare(const pxrom_model* model, const char* const* names,
                                           const int32_t* values, size_t count,
                                           pxrom_prepared** prepared, char* message,
                                           size_t message_size);
PXROM_API void pxrom_prepared_free(pxrom_prepared* prepared);

/* The columns of points and results, as PXROM_INPUTS and PXROM_OUTPUTS of the model list them. 0
 * for a null handle. */
PXROM_API size_t pxrom_prepared_input_count(const pxrom_prepared* prepared);
PXROM_API size_t pxrom_prepared_output_count(const pxrom_prepared* prepared);
/* 1 when the predicted error of output number `output` comes from cross-validation data: it is in
 * the unit of the output then, and otherwise in a scaled space as its surface reports it. 0 also
 * for a null handle and an output that isn't there. */
PXROM_API int32_t pxrom_prepared_error_in_unit(const pxrom_prepared* prepared, size_t output);

typedef enum pxrom_mode {
  PXROM_EXACT = 0, /* to the last bit */
  PXROM_FAST = 1   /* values and errors from cross-validation within 1e-11 of the largest one that
                      the output has in the batch */
} pxrom_mode;

/* What became of one output at one point. */
enum {
  PXROM_POINT_OK = 0,
  PXROM_POINT_WITHOUT_ERROR = -2, /* the value is good; the error is NaN: there is none */
  PXROM_POINT_FAILED = 1          /* the value, and the error, are NaN */
};

/* Values, errors and statuses at `rows` points. Tables stand row by row: `points` holds rows *
 * inputs numbers in physical units, each of the others rows * outputs. The sizes are the caller's
 * responsibility.
 *
 * `errors` may be null: that is the form without errors. **With errors, a family that knows none
 * answers PXROM_POINT_FAILED for value and error**: ask without for those. `statuses` may be null.
 * `points` may be null where there are no inputs, and all may be where `rows` is 0.
 *
 * PXROM_OK whatever the statuses are. */
PXROM_API pxrom_status pxrom_prepared_evaluate(const pxrom_prepared* prepared, const double* points,
                                               size_t rows, int32_t mode, double* values,
                                               double* errors, int32_t* statuses, char* message,
                                               size_t message_size);

/* The derivatives of the values with respect to the inputs, in physical units: for each row and
 * output one number per input. A status, one per row and output, is PXROM_POINT_OK, or
 * PXROM_POINT_FAILED with NaN where there is no derivative; `statuses` may be null. */
PXROM_API pxrom_status pxrom_prepared_gradients(const pxrom_prepared* prepared,
                                                const double* points, size_t rows,
                                                double* gradients, int32_t* statuses, char* message,
                                                size_t message_size);

/* ---- A text that may be damaged ---- */

typedef struct pxrom_finding {
  int32_t severity; /* 0 note, 1 warning, 2 error */
  int32_t code;     /* the number of a kind of finding; it never changes */
  const char* code_name;
  size_t line; /* both from 1; columns count bytes */
  size_t column;
  const char* group; /* "PlexuraData 3 / Genome 1", or "" for the text as a whole */
  const char* key;   /* with its "=", or "" */
  const char* found; /* what is there and what belongs there, or "" */
  const char* expected;
  const char* sentence;
} pxrom_finding;

/* Gets one finding, which is gone when it returns, and what the caller passed as `user`. Anything
 * but 0 ends the list. */
typedef int (*pxrom_finding_callback)(const pxrom_finding* finding, void* user);

/* How many findings of each severity there are. */
typedef struct pxrom_finding_counts {
  size_t notes;
  size_t warnings;
  size_t errors;
} pxrom_finding_counts;

/* Says what is wrong with a database, where reading is silent: calls `callback` for each finding,
 * by place. Either of `callback` and `counts` may be null; `user` is only handed on. PXROM_OK
 * whatever is found. */
PXROM_API pxrom_status pxrom_check(const char* text, size_t length, pxrom_finding_callback callback,
                                   void* user, pxrom_finding_counts* counts, char* message,
                                   size_t message_size);

#ifdef __cplusplus
}
#endif
