// Empty.c: a disc-recording framework that has nothing in it.
extern int nothing;
int nothing = 0;
