#pragma once

#include <stddef.h>
#include <stdint.h>

#include "pxrom/export.h"

/* The library for hosts in other languages: plain C (C99), opaque handles, no exceptions.
 *
 *   pxrom_model* model = NULL;
 *   char message[PXROM_MESSAGE_SIZE];
 *   if (pxrom_model_read(text, length, &model, message, sizeof message) != PXROM_OK) puts(message);
 *
 * Statuses: every operation that can fail returns a pxrom_status; it writes its results only on
 * PXROM_OK, unless its comment says otherwise.
 *
 * Messages: the last two arguments of such an operation are a buffer of the caller and its size.
 * The buffer gets one sentence that says what is wrong and what would be correct, cut to fit and
 * always ended by a 0, or "" on PXROM_OK. Pass null or a size of 0 for no message. The library
 * keeps no message, so threads share nothing.
 *
 * Null: a null handle, result or data pointer is refused with PXROM_NULL_ARGUMENT, unless a comment
 * says what null means.
 *
 * Numbers: lists and modes are plain integers, so that unknown numbers can be refused; the
 * enumerations name the known ones.
 *
 * Ownership: the caller owns the results of `_read` and `_prepare` and frees them with `_free`;
 * freeing null does nothing. Free a handle once, and don't use it afterwards: as with free(),
 * freeing it twice is undefined behaviour. Set it to null to be safe. A prepared combination may
 * outlive its model. Strings and arrays that an operation returns belong to their handle. Texts are
 * the bytes of the database, usually UTF-8.
 *
 * Threads: a handle never changes, so any number of threads may use it until it is freed.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* Long enough for every message, except those that quote very long names. */
#define PXROM_MESSAGE_SIZE 512

typedef enum pxrom_status {
  PXROM_OK = 0,
  PXROM_REFUSED = 1,       /* the database or the request; the message says why */
  PXROM_NULL_ARGUMENT = 2, /* the message says which */
  PXROM_NO_MEMORY = 3,
  PXROM_FAILED = 4 /* the caller's own callback threw an exception */
} pxrom_status;

/* The version of the library that runs, such as "0.1.0". */
PXROM_API const char* pxrom_version(void);

/* ---- A model ---- */

typedef struct pxrom_model pxrom_model;

/* Reads the `length` bytes of a database. PXROM_REFUSED for a text that can't be read or has no
 * combination, and for a length that no text can have, such as (size_t)-1. Like all reading in this
 * library, it does not report damage that can still be read; pxrom_check does. */
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
  const int32_t* values; /* for an enabled discrete input: its values in the combinations, */
  size_t value_count;    /* ascending */
} pxrom_parameter;

PXROM_API pxrom_status pxrom_model_count(const pxrom_model* model, int32_t list, size_t* count,
                                         char* message, size_t message_size);
PXROM_API pxrom_status pxrom_model_parameter(const pxrom_model* model, int32_t list, size_t index,
                                             pxrom_parameter* parameter, char* message,
                                             size_t message_size);

/* The combinations are in ascending order of their values; a model without discrete inputs has
 * one. */
PXROM_API pxrom_status pxrom_model_combination_count(const pxrom_model* model, size_t* count,
                                                     char* message, size_t message_size);
/* `values` gets one value per discrete input, in their order. It becomes null for a model without
 * discrete inputs. */
PXROM_API pxrom_status pxrom_model_combination(const pxrom_model* model, size_t index,
                                               const int32_t** values, char* message,
                                               size_t message_size);

/* ---- A prepared combination ---- */

typedef struct pxrom_prepared pxrom_prepared;

/* Prepares one combination for evaluation at many points. `names` and `values` hold `count`
 * elements each and name every discrete input once, in any order. With null `names`, the values are
 * in the order of PXROM_DISCRETE_INPUTS. Both may be null if `count` is 0. */
PXROM_API pxrom_status pxrom_model_prepare(const pxrom_model* model, const char* const* names,
                                           const int32_t* values, size_t count,
                                           pxrom_prepared** prepared, char* message,
                                           size_t message_size);

/* The cost of an evaluation, estimated from the sizes of what a model holds, without an evaluation:
 * floating-point operations at one point, with errors, and bytes of memory in addition to the
 * model. As a limit: the largest cost that is allowed; UINT64_MAX limits nothing. */
typedef struct pxrom_cost {
  uint64_t operations;
  uint64_t bytes;
} pxrom_cost;

/* The cost of a combination, all outputs together. The arguments are those of pxrom_model_prepare.
 */
PXROM_API pxrom_status pxrom_model_cost(const pxrom_model* model, const char* const* names,
                                        const int32_t* values, size_t count, pxrom_cost* cost,
                                        char* message, size_t message_size);
/* pxrom_model_prepare with a limit, for models from strangers. PXROM_REFUSED, before anything is
 * prepared, when an evaluation would cost more; the message gives the cost and the limit that would
 * be enough. pxrom_prepared_gradients is refused in the same way if gradients cost more. */
PXROM_API pxrom_status pxrom_model_prepare_within(const pxrom_model* model,
                                                  const char* const* names, const int32_t* values,
                                                  size_t count, const pxrom_cost* limit,
                                                  pxrom_prepared** prepared, char* message,
                                                  size_t message_size);
PXROM_API void pxrom_prepared_free(pxrom_prepared* prepared);

/* The numbers of columns of points and results: the lengths of PXROM_INPUTS and PXROM_OUTPUTS of
 * the model. 0 for a null handle. */
PXROM_API size_t pxrom_prepared_input_count(const pxrom_prepared* prepared);
PXROM_API size_t pxrom_prepared_output_count(const pxrom_prepared* prepared);
/* 1 if the predicted error of output number `output` comes from cross-validation data and so is in
 * the unit of the output. 0 if it is in a scaled space, as a surface reports it, and also for a
 * null handle or an unknown output. */
PXROM_API int32_t pxrom_prepared_error_in_unit(const pxrom_prepared* prepared, size_t output);

typedef enum pxrom_mode {
  PXROM_EXACT = 0, /* to the last bit */
  PXROM_FAST = 1   /* values and errors from cross-validation within 1e-11 of the largest one that
                      the output has in the batch */
} pxrom_mode;

/* The status of one output at one point. */
enum {
  PXROM_POINT_OK = 0,
  PXROM_POINT_WITHOUT_ERROR = -2, /* the value is valid; there is no error, it is NaN */
  PXROM_POINT_FAILED = 1          /* the value and the error are NaN */
};

/* Values, errors and statuses at `rows` points. Tables are row by row: `points` holds rows * inputs
 * numbers in physical units, each other table rows * outputs. The sizes are the caller's
 * responsibility.
 *
 * With null `errors` this is the form without errors. **With errors, a family without a predicted
 * error gives PXROM_POINT_FAILED for value and error**: pass null for such families. `statuses` may
 * be null. `points` may be null if there are no inputs, and all may be null if `rows` is 0.
 *
 * PXROM_OK whatever the statuses are. */
PXROM_API pxrom_status pxrom_prepared_evaluate(const pxrom_prepared* prepared, const double* points,
                                               size_t rows, int32_t mode, double* values,
                                               double* errors, int32_t* statuses, char* message,
                                               size_t message_size);

/* Whose error the error of an output is. */
typedef enum pxrom_error_origin {
  PXROM_ERROR_NONE = 0,
  /* the spread of the predictions that leave out one fold each */
  PXROM_ERROR_FROM_CROSS_VALIDATION = 1,
  /* those of all surfaces of the ensemble together; also of a single surface */
  PXROM_ERROR_FROM_ALL_SURFACES = 2,
  /* that of one surface, since others report none: not that of the ensemble */
  PXROM_ERROR_FROM_ONE_SURFACE = 3
} pxrom_error_origin;

/* Where the error of output number `output` comes from; PXROM_ERROR_NONE for a null handle or an
 * unknown output. Unless they are null, `surface` gets the number of that one surface, from 0, and
 * `first_order` whether the error went through an output transformation by its derivative. */
PXROM_API int32_t pxrom_prepared_error_origin(const pxrom_prepared* prepared, size_t output,
                                              size_t* surface, int32_t* first_order);

/* Values at `rows` points with errors in the unit of their outputs, for every family: a family
 * without a predicted error gives PXROM_POINT_WITHOUT_ERROR and its value. `errors` are not
 * negative; `lower` and `upper` are the ends of the interval that they mean, which need not be
 * as far from the value through an output transformation; `raw_errors` are those of
 * pxrom_prepared_evaluate, as the surface reports them. Each table may be null. The rest is as for
 * pxrom_prepared_evaluate. */
PXROM_API pxrom_status pxrom_prepared_evaluate_with_units(
    const pxrom_prepared* prepared, const double* points, size_t rows, int32_t mode, double* values,
    double* errors, double* lower, double* upper, double* raw_errors, int32_t* statuses,
    char* message, size_t message_size);

/* The ranges of the samples that output number `output` was fitted to: a lowest and a highest value
 * for each input, in physical units. They are not the bounds of the inputs. PXROM_REFUSED for an
 * unknown output and where the model holds no samples. */
PXROM_API pxrom_status pxrom_prepared_sample_ranges(const pxrom_prepared* prepared, size_t output,
                                                    double* lower, double* upper, char* message,
                                                    size_t message_size);

enum { PXROM_OUTSIDE = 0, PXROM_INSIDE = 1, PXROM_NO_SAMPLES = -1 };

/* Where points are relative to the samples of each output. For each row and output, `inside` gets
 * PXROM_INSIDE, PXROM_OUTSIDE or PXROM_NO_SAMPLES, and `distances` the distance to the nearest
 * sample in units of the typical spacing of the samples: the median of the distances from each
 * sample to the nearest other one, all scaled by the ranges. It is NaN without two different
 * samples. For each row, output and input, `sides` gets -1 below the range of the samples, 1 above
 * it or for a NaN, else 0. Each table may be null. PXROM_REFUSED if this costs more than the limit
 * that pxrom_model_prepare_within was given. */
PXROM_API pxrom_status pxrom_prepared_locate(const pxrom_prepared* prepared, const double* points,
                                             size_t rows, int32_t* inside, double* distances,
                                             signed char* sides, char* message,
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
  int32_t code;     /* the number of this kind of finding; it never changes */
  const char* code_name;
  size_t line; /* both from 1; columns count bytes */
  size_t column;
  const char* group; /* "PlexuraData 3 / Genome 1", or "" for the text as a whole */
  const char* key;   /* with its "=", or "" */
  const char* found; /* what the text holds and what it should hold, or "" */
  const char* expected;
  const char* sentence;
} pxrom_finding;

/* Gets one finding, which is valid only during the call, and the caller's `user`. Any result other
 * than 0 ends the list. */
typedef int (*pxrom_finding_callback)(const pxrom_finding* finding, void* user);

/* How many findings of each severity there are. */
typedef struct pxrom_finding_counts {
  size_t notes;
  size_t warnings;
  size_t errors;
} pxrom_finding_counts;

/* Says what is wrong with a database, which reading does not report: calls `callback` for each
 * finding, in the order of the text. `callback` or `counts` may be null; `user` is only passed on.
 * PXROM_OK whatever is found. */
PXROM_API pxrom_status pxrom_check(const char* text, size_t length, pxrom_finding_callback callback,
                                   void* user, pxrom_finding_counts* counts, char* message,
                                   size_t message_size);

#ifdef __cplusplus
}
#endif
