# Empty compiler generated dependencies file for ostrel.
# This may be replaced when dependencies are built.
