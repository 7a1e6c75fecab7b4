# Empty compiler generated dependencies file for ostrel_objects.
# This may be replaced when dependencies are built.
