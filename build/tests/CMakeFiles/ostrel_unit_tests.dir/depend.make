# Empty dependencies file for ostrel_unit_tests.
# This may be replaced when dependencies are built.
