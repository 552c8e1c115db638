Dim d As Dictionary
Print "before" ' expect: before
Print d.Count ' expect error: NilObjectException: the object whose 'Count' is asked for is nil
