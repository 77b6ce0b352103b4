// An add-on without a factory.
extern const int kNothing = 0;
